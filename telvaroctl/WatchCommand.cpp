// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "UnixSignals.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroScreen.h>
#include <TelvaroTaskSwitcher.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QObject>
#include <QString>

#include <array>

namespace {

void report(bool asJson, const char* signal, const QJsonValue& value)
{
    if (asJson) {
        QJsonObject object{{QStringLiteral("signal"), QLatin1String(signal)}};
        if (!value.isUndefined()) {
            object.insert(QStringLiteral("value"), value);
        }
        printLine(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
        return;
    }
    const QString text = printable(value.toVariant().toString());
    printLine(text.isEmpty() ? QString(QLatin1String(signal)) : QLatin1String(signal) + QLatin1Char(' ') + text);
}

/// Prints what changes in the service, by the names of the connectors' signals, whenever its state is known.
class Watch : public QObject
{
    Q_OBJECT

public:
    explicit Watch(bool asJson)
        : mAsJson(asJson)
    {
        const std::array<const TelvaroLiveObject*, 3> objects = {&mService, &mTaskSwitcher, &mScreen};
        for (const TelvaroLiveObject* const object : objects) {
            connect(object, &TelvaroLiveObject::statusChanged, this, &Watch::onStatusChanged);
        }
        // To the live objects the end of the bus is that of the service, which may be absent already.
        bus().connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                      QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                      SLOT(onDisconnected()));
        connect(&mTaskSwitcher, &TelvaroTaskSwitcher::viewsChanged, this, [this] {
            reportChange(mTaskSwitcher, "viewsChanged", QJsonValue::Undefined);
        });
        connect(&mTaskSwitcher, &TelvaroTaskSwitcher::currentViewChanged, this, [this] {
            reportChange(mTaskSwitcher, "currentViewChanged", mTaskSwitcher.getCurrentView());
        });
        connect(&mScreen, &TelvaroScreen::screenSaverActiveChanged, this, [this] {
            reportChange(mScreen, "screenSaverActiveChanged", mScreen.isScreenSaverActive());
        });
        connect(&mScreen, &TelvaroScreen::orientationChanged, this, [this] {
            reportChange(mScreen, "screenOrientationChanged", mScreen.getOrientation());
        });
        connect(&mScreen, &TelvaroScreen::fullScreenChanged, this, [this] {
            reportChange(mScreen, "fullScreenChanged", mScreen.isFullScreen());
        });
    }

    static QDBusConnection bus()
    {
        return QDBusConnection::TELVARO_BUS();
    }

private Q_SLOTS:
    void onDisconnected()
    {
        QCoreApplication::exit(Failed);
    }

private:
    // The first values, and the empty ones of a service that has gone, are no changes.
    void reportChange(const TelvaroLiveObject& object, const char* signal, const QJsonValue& value)
    {
        if (mIsServiceKnown && object.getStatus() != TelvaroLiveObject::Absent) {
            report(mAsJson, signal, value);
        }
    }

    void onStatusChanged()
    {
        const bool isThere = mService.getStatus() == TelvaroLiveObject::Ready;
        const bool isKnown = isThere && hasState(mTaskSwitcher) && hasState(mScreen);
        if (mService.getStatus() == TelvaroLiveObject::Loading || isThere != isKnown) {
            return;
        }
        if (!mIsAnnounced) {
            mIsAnnounced = true;
            printError(QStringLiteral("watching %1").arg(TelvaroDBusDefinitions::getServiceName()));
        } else if (isKnown != mIsServiceKnown) {
            report(mAsJson, isKnown ? "serviceBack" : "serviceGone", QJsonValue::Undefined);
        }
        mIsServiceKnown = isKnown;
    }

    static bool hasState(const TelvaroLiveObject& object)
    {
        return object.getStatus() == TelvaroLiveObject::Ready || object.getStatus() == TelvaroLiveObject::Failed;
    }

    bool mAsJson;
    bool mIsAnnounced = false;
    bool mIsServiceKnown = false;
    TelvaroLiveObject mService;
    TelvaroTaskSwitcher mTaskSwitcher;
    TelvaroScreen mScreen;
};

ExitStatus watch(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (!arguments.isEmpty()) {
        return wrongArgumentCount("watch");
    }
    if (!isOnCompositorDevice()) {
        return Failed;
    }
    // Before Qt's D-Bus thread starts.
    UnixSignals::block();
    const UnixSignals unixSignals;
    QObject::connect(&unixSignals, &UnixSignals::terminationRequested, QCoreApplication::instance(),
                     &QCoreApplication::quit);

    // Qt aborts where a closed connection is subscribed to.
    if (!Watch::bus().isConnected()) {
        printError(QStringLiteral("there is no bus"));
        return Failed;
    }
    const Watch watch(isJsonWanted(parser));
    if (QCoreApplication::exec() != Done) {
        printError(QStringLiteral("there is no bus"));
        return Failed;
    }
    return Done;
}

} // namespace

QList<Command> watchCommands()
{
    return {
        {"watch", "Prints each change as it comes, until interrupted.", "",
         "Prints 'watching' to standard error once it listens. Waits for a service that is not\n"
         "registered yet, and prints 'serviceGone' and 'serviceBack' when it goes and comes.",
         jsonOption, watch},
    };
}

#include "WatchCommand.moc"
