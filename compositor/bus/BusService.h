// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QStringList>

/// The connection to the bus under whose names the compositor's objects are found.
class BusService : public QObject
{
    Q_OBJECT

public:
    explicit BusService(QObject* parent = nullptr);
    /// Takes the objects and the names back: what ends after that is not told to anybody.
    ~BusService() override;

    bool publish(const QString& path, QObject* object);
    /// To be called when all objects are published: from then on the service is there for its clients.
    bool takeName();
    /// Takes the name under which applications of any desktop look for the notification server, if it is free.
    void takeNotificationName();

    /// Undoes both: the objects stay, but are not found.
    void giveNamesBack();

    const QDBusConnection& connection() const
    {
        return mConnection;
    }
    QString error() const
    {
        return mError;
    }

Q_SIGNALS:
    void disconnected();

private:
    QDBusConnection mConnection;
    QStringList mPaths;
    QString mError;
};
