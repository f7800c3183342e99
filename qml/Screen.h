// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroScreen.h>

#include <QVariantMap>

/// The settings of the screen.
class Screen : public TelvaroScreen
{
    Q_OBJECT
    Q_PROPERTY(bool available READ isAvailable NOTIFY statusChanged)

public:
    explicit Screen(QObject* parent = nullptr);

    bool isAvailable() const;

Q_SIGNALS:
    void requestFailed(const QVariantMap& error);
};
