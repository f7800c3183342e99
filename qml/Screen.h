// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ServiceObject.h"

#include <TelvaroScreenDBusConnector.h>

#include <QString>
#include <QStringList>
#include <QVariantMap>

/// The settings of the screen. A write blocks until the service has answered and is read back: where the service
/// refused, the property keeps its value. Without a service all of them are false, 0 or empty.
class Screen : public ServiceObject
{
    Q_OBJECT
    Q_PROPERTY(bool screenSaverActive READ isScreenSaverActive NOTIFY screenSaverActiveChanged)
    Q_PROPERTY(
        bool screenSaverEnabled READ isScreenSaverEnabled WRITE setScreenSaverEnabled NOTIFY screenSaverEnabledChanged)
    /// Seconds without input.
    Q_PROPERTY(
        int screenSaverTimeout READ getScreenSaverTimeout WRITE setScreenSaverTimeout NOTIFY screenSaverTimeoutChanged)
    /// Degrees, as the service writes them: "0", "90", "180", "270".
    Q_PROPERTY(QString orientation READ getOrientation WRITE setOrientation NOTIFY orientationChanged)
    Q_PROPERTY(bool fullScreen READ isFullScreen WRITE setFullScreen NOTIFY fullScreenChanged)

public:
    explicit Screen(QObject* parent = nullptr);

    bool isScreenSaverActive() const;
    bool isScreenSaverEnabled() const;
    void setScreenSaverEnabled(bool enabled);
    int getScreenSaverTimeout() const;
    void setScreenSaverTimeout(int seconds);
    QString getOrientation() const;
    void setOrientation(const QString& orientation);
    bool isFullScreen() const;
    void setFullScreen(bool fullScreen);

Q_SIGNALS:
    void screenSaverActiveChanged();
    void screenSaverEnabledChanged();
    void screenSaverTimeoutChanged();
    void orientationChanged();
    void fullScreenChanged();

protected:
    void onServiceChanged() override;

private Q_SLOTS:
    void onPropertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated);

private:
    void readAll();
    void read(const QString& name);

    TelvaroScreenDBusConnector mConnector;
    QVariantMap mValues;
};
