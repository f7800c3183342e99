// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveScreen.h"

#include "TelvaroScreen.h"
#include "VariantConversionTools.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroScreenDBusConnector.h>

#include <QPointer>

#include <vector>

namespace {

using Connector = TelvaroScreenDBusConnector;

struct Setting
{
    QString name;
    /// Of the property's type.
    QVariant emptyValue;
    void (TelvaroScreen::*changeSignal)();
};

const std::vector<Setting>& settings()
{
    static const std::vector<Setting> cSettings = {
        {Connector::cScreenSaverActiveProperty, false, &TelvaroScreen::screenSaverActiveChanged},
        {Connector::cScreenSaverEnabledProperty, false, &TelvaroScreen::screenSaverEnabledChanged},
        {Connector::cScreenSaverTimoutProperty, 0, &TelvaroScreen::screenSaverTimeoutChanged},
        {Connector::cScreenOrientationProperty, QString(), &TelvaroScreen::orientationChanged},
        {Connector::cFullScreenProperty, false, &TelvaroScreen::fullScreenChanged}};
    return cSettings;
}

QStringList names()
{
    QStringList names;
    for (const Setting& setting : settings()) {
        names.append(setting.name);
    }
    return names;
}

QVariantMap emptyValues()
{
    QVariantMap values;
    for (const Setting& setting : settings()) {
        values.insert(setting.name, setting.emptyValue);
    }
    return values;
}

/// The value as one of type T; invalid where it is none.
template <typename T> QVariant convert(const QVariant& value, bool (*conversion)(const QVariant&, T&))
{
    T result = {};
    return conversion(value, result) ? QVariant(result) : QVariant();
}

QVariant toType(int type, const QVariant& value)
{
    switch (type) {
    case QMetaType::Bool:
        return convert(value, VariantConversionTools::toBool);
    case QMetaType::Int:
        return convert(value, VariantConversionTools::toInt);
    default:
        return convert(value, VariantConversionTools::toString);
    }
}

} // namespace

LiveScreen::LiveScreen()
    : LiveProperties(TelvaroDBusDefinitions::getScreenPath(), TelvaroDBusDefinitions::getScreenInterface(), names())
    , mValues(emptyValues())
    , mPublishedValues(mValues)
{
}

QVariant LiveScreen::getValue(const QString& name) const
{
    return mValues.value(name);
}

bool LiveScreen::store(const QString& name, const QVariant& value, Origin origin)
{
    QVariant& stored = mValues[name];
    const QVariant converted = toType(stored.userType(), value);
    if (!converted.isValid() || (origin == Origin::Notification && converted.toString().isEmpty())) {
        return false;
    }
    stored = converted;
    return true;
}

void LiveScreen::forget()
{
    mValues = emptyValues();
}

void LiveScreen::publish()
{
    const QPointer<LiveScreen> self(this);
    auto* const screen = static_cast<TelvaroScreen*>(mObject);
    for (const Setting& setting : settings()) {
        const QVariant value = mValues.value(setting.name);
        if (mPublishedValues.value(setting.name) != value) {
            mPublishedValues.insert(setting.name, value);
            Q_EMIT(screen->*setting.changeSignal)();
            if (!self) {
                return;
            }
        }
    }
}
