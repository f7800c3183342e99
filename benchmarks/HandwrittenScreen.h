// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusInterface>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

/// The screen as an application would follow and use it that talks to QtDBus itself.
class HandwrittenScreen : public QObject
{
    Q_OBJECT

public:
    HandwrittenScreen();

    bool isScreenSaverActive();
    QString orientation();
    void setFullScreen(bool fullScreen);

Q_SIGNALS:
    void screenSaverActiveChanged(bool active);

private Q_SLOTS:
    void onPropertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated);

private:
    bool isServiceThere() const;
    QVariant property(const QString& name);

    QDBusInterface mProperties;
    bool mIsScreenSaverActive;
};
