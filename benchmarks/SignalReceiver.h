// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

/// The slot that QtDBus needs for a signal that generated proxies do not have.
class SignalReceiver : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void onPropertiesChanged(const QString& /*interface*/, const QVariantMap& values, const QStringList& /*invalid*/)
    {
        Q_EMIT changed(values);
    }

Q_SIGNALS:
    void changed(const QVariantMap& values);
};
