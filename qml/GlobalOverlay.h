// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ServiceObject.h"

#include <TelvaroGlobalOverlayDBusConnector.h>

#include <QQmlParserStatus>
#include <QString>

/// A message over everything on the screen. The service does not tell what it shows: the properties are what this
/// object asked for. While visible, the message is shown again when its text changes and when the service comes back,
/// and it is taken away with the object.
class GlobalOverlay : public ServiceObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(QString text READ getText WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool visible READ isVisible WRITE setVisible NOTIFY visibleChanged)

public:
    explicit GlobalOverlay(QObject* parent = nullptr);
    ~GlobalOverlay() override;

    QString getText() const;
    void setText(const QString& text);
    bool isVisible() const;
    void setVisible(bool visible);

    /// Shows the text; blocks until the service has answered.
    Q_INVOKABLE void show(const QString& text);
    Q_INVOKABLE void hide();

    void classBegin() override;
    void componentComplete() override;

Q_SIGNALS:
    void textChanged();
    void visibleChanged();

protected:
    void onServiceChanged() override;

private:
    void showIfVisible();
    void takeAway();

    TelvaroGlobalOverlayDBusConnector mConnector;
    QString mText;
    bool mVisible = false;
    bool mComplete = true;
};
