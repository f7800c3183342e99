// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusConnection>
#include <QObject>

/// What the types of the module have in common: they know whether the service is there and follow its restarts.
class ServiceObject : public QObject
{
    Q_OBJECT
    /// Whether this is a compositor device with the service on its bus.
    Q_PROPERTY(bool available READ isAvailable NOTIFY availableChanged)

public:
    bool isAvailable() const;

Q_SIGNALS:
    void availableChanged();

protected:
    explicit ServiceObject(QObject* parent);

    /// The bus of the service.
    static QDBusConnection getBus();

    /// The service came, went, or was replaced by another one: nothing that it has told is true any longer. Called
    /// before availableChanged() is emitted.
    virtual void onServiceChanged();

private:
    void onOwnerChanged(const QString& service, const QString& oldOwner, const QString& newOwner);

    bool mAvailable = false;
};
