// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroScreenDBusConnector.h"

#include "DBusConnection.h"
#include "DBusConnectionParameter.h"
#include "PropertyReply.h"
#include "TelvaroDBusDefinitions.h"
#include "VariantConversionTools.h"

#include <QDBusVariant>
#include <QDebug>
#include <QPointer>

#include <optional>

const QString TelvaroScreenDBusConnector::cScreenSaverActiveProperty = QStringLiteral("screenSaverActive");
const QString TelvaroScreenDBusConnector::cScreenSaverEnabledProperty = QStringLiteral("screenSaverEnabled");
const QString TelvaroScreenDBusConnector::cScreenSaverTimoutProperty = QStringLiteral("screenSaverTimeoutSeconds");
const QString TelvaroScreenDBusConnector::cPropertiesChanged = QStringLiteral("PropertiesChanged");
const QString TelvaroScreenDBusConnector::cScreenOrientationProperty = QStringLiteral("orientation");
const QString TelvaroScreenDBusConnector::cFullScreenProperty = QStringLiteral("fullScreen");

TelvaroScreenDBusConnector::TelvaroScreenDBusConnector(QObject* parent)
    : TelvaroDBusConnectorBase(DBusConnectionParameter::create(TelvaroDBusDefinitions::getServiceName(),
                                                               TelvaroDBusDefinitions::getScreenPath(),
                                                               TelvaroDBusDefinitions::getPropertyInterface()),
                               parent)
    , mScreenSaverActive(isScreenSaverActive())
    , mFullScreen(false)
{
    if (!DBusConnection::subscribe(TelvaroDBusDefinitions::getServiceName(), TelvaroDBusDefinitions::getScreenPath(),
                                   TelvaroDBusDefinitions::getPropertyInterface(), cPropertiesChanged,
                                   QStringLiteral("sa{sv}as"), this,
                                   SLOT(onScreenPropertiesChanged(QString, QVariantMap, QStringList)))) {
        // "siganl" stays: applications may rely on the text of the log.
        qWarning() << "Failed to connect to PropertiesChanged siganl";
    }
}

TelvaroScreenDBusConnector::~TelvaroScreenDBusConnector() = default;

QString TelvaroScreenDBusConnector::getOrientationLandscape()
{
    static const QString cLandscape = QStringLiteral("0");
    return cLandscape;
}

QString TelvaroScreenDBusConnector::getOrientationPortrait()
{
    static const QString cPortrait = QStringLiteral("90");
    return cPortrait;
}

QString TelvaroScreenDBusConnector::getOrientationInversePortrait()
{
    static const QString cInversePortrait = QStringLiteral("270");
    return cInversePortrait;
}

QVariant TelvaroScreenDBusConnector::getProperty(const QString& name)
{
    if (!isInterfaceValid()) {
        return {};
    }
    const std::optional<QVariant> value =
        PropertyReply::getValue(mInterface.call(QDBus::AutoDetect, TelvaroDBusDefinitions::getPropertyMehodGet(),
                                                TelvaroDBusDefinitions::getScreenInterface(), name));
    if (!value) {
        qWarning() << "Unable to read property: " << name;
        return {};
    }
    return *value;
}

void TelvaroScreenDBusConnector::setProperty(const QString& name, const QDBusVariant& value)
{
    if (!isInterfaceValid()) {
        return;
    }
    mInterface.call(QDBus::AutoDetect, TelvaroDBusDefinitions::getPropertyMehodSet(),
                    TelvaroDBusDefinitions::getScreenInterface(), name, QVariant::fromValue(value));
}

void TelvaroScreenDBusConnector::enableScreenSaver()
{
    setProperty(cScreenSaverEnabledProperty, QDBusVariant(true));
}

void TelvaroScreenDBusConnector::disableScreenSaver()
{
    setProperty(cScreenSaverEnabledProperty, QDBusVariant(false));
}

void TelvaroScreenDBusConnector::setScreenSaverTimeout(int timeoutSeconds)
{
    setProperty(cScreenSaverTimoutProperty, QDBusVariant(timeoutSeconds));
}

bool TelvaroScreenDBusConnector::isScreenSaverActive()
{
    bool active = false;
    if (!VariantConversionTools::toBool(getProperty(cScreenSaverActiveProperty), active)) {
        qWarning() << "Unable to convert property " << cScreenSaverActiveProperty << "to bool!";
    }
    return active;
}

QString TelvaroScreenDBusConnector::getOrientation()
{
    QString orientation;
    if (!VariantConversionTools::toString(getProperty(cScreenOrientationProperty), orientation)) {
        qWarning() << "Unable to convert property " << cScreenOrientationProperty << "to QString!";
    }
    return orientation;
}

void TelvaroScreenDBusConnector::setOrientation(const QString& orientation)
{
    setProperty(cScreenOrientationProperty, QDBusVariant(orientation));
}

void TelvaroScreenDBusConnector::setFullScreen(bool fullScreen)
{
    setProperty(cFullScreenProperty, QDBusVariant(fullScreen));
}

bool TelvaroScreenDBusConnector::getFullScreen()
{
    bool fullScreen = false;
    if (!VariantConversionTools::toBool(getProperty(cFullScreenProperty), fullScreen)) {
        qWarning() << "Unable to convert property " << cFullScreenProperty << "to bool!";
    }
    return fullScreen;
}

void TelvaroScreenDBusConnector::onScreenPropertiesChanged(const QString& /*name*/, const QVariantMap& map,
                                                           const QStringList& /*list*/)
{
    // A slot may delete the connector.
    const QPointer<TelvaroScreenDBusConnector> self(this);

    if (map.contains(cScreenSaverActiveProperty)) {
        const bool active = isScreenSaverActive();
        if (active != mScreenSaverActive) {
            Q_EMIT screenSaverActiveChanged(active);
            if (!self) {
                return;
            }
            // Stored after the emission, unlike the other two: listeners rely on it.
            mScreenSaverActive = active;
        }
    }
    if (map.contains(cScreenOrientationProperty)) {
        const QString orientation = getOrientation();
        if (orientation != mOrientation) {
            mOrientation = orientation;
            Q_EMIT screenOrientationChanged(orientation);
            if (!self) {
                return;
            }
        }
    }
    if (map.contains(cFullScreenProperty)) {
        const bool fullScreen = getFullScreen();
        if (fullScreen != mFullScreen) {
            mFullScreen = fullScreen;
            Q_EMIT fullScreenChanged(fullScreen);
        }
    }
}
