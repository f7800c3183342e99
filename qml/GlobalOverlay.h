// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroLiveObject.h>

#include <QQmlParserStatus>
#include <QString>
#include <QVariantMap>

/// A message over everything on the screen. The service does not say what it shows: the properties are what this object
/// asked for. While visible, the message is shown again when its text changes and when the service comes back, and it
/// is taken away with the object.
class GlobalOverlay : public TelvaroLiveObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(bool available READ isAvailable NOTIFY statusChanged)
    Q_PROPERTY(QString text READ getText WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool visible READ isVisible WRITE setVisible NOTIFY visibleChanged)

public:
    explicit GlobalOverlay(QObject* parent = nullptr);
    ~GlobalOverlay() override;

    bool isAvailable() const;
    QString getText() const;
    void setText(const QString& text);
    bool isVisible() const;
    void setVisible(bool visible);

    Q_INVOKABLE void show(const QString& text);
    Q_INVOKABLE void hide();

    void classBegin() override;
    void componentComplete() override;

Q_SIGNALS:
    void textChanged();
    void visibleChanged();
    void requestFailed(const QVariantMap& error);

private:
    void showIfVisible();
    void takeAway();

    QString mText;
    bool mVisible = false;
    bool mComplete = true;
};
