// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "LiveProperties.h"

#include <QVariantMap>

/// The properties of the screen.
class LiveScreen : public LiveProperties
{
public:
    LiveScreen();

    /// The property's value in its own type; false, 0 or empty while unknown.
    QVariant getValue(const QString& name) const;

    using LiveProperties::write;

protected:
    bool store(const QString& name, const QVariant& value, Origin origin) override;
    void forget() override;
    void publish() override;

private:
    QVariantMap mValues;
    QVariantMap mPublishedValues;
};
