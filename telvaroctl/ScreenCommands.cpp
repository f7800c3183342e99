// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Json.h"
#include "Service.h"
#include "Suggestion.h"
#include "Table.h"

#include <TelvaroScreen.h>

#include <QCommandLineParser>
#include <QDBusPendingReply>
#include <QJsonObject>
#include <QString>
#include <QVariant>

#include <array>
#include <limits>

namespace {

const QString cOrientation = QStringLiteral("orientation");
const QString cFullScreen = QStringLiteral("fullscreen");
const QString cScreenSaver = QStringLiteral("screensaver");
const QString cScreenSaverTimeout = QStringLiteral("screensaver-timeout");
const QString cToggle = QStringLiteral("toggle");
const QString cTimeout = QStringLiteral("timeout");

const char* const cSwitchWords = "on|off|toggle";
const char* const cOrientationWords = "landscape|portrait|inverse-landscape|inverse-portrait|DEGREES";

/// One setting of the screen, by the name of its Qt property.
struct Setting
{
    const char* property;
    /// As messages name it.
    const char* name;
    std::function<QDBusPendingReply<>(TelvaroScreen&, const QVariant&)> write;
};

const Setting* screenSaverEnabled()
{
    static const Setting cSetting = {"screenSaverEnabled", "the screen saver",
                                     [](TelvaroScreen& screen, const QVariant& value) {
                                         return screen.setScreenSaverEnabled(value.toBool());
                                     }};
    return &cSetting;
}

const Setting* screenSaverTimeout()
{
    static const Setting cSetting = {"screenSaverTimeout", "the screen saver's timeout",
                                     [](TelvaroScreen& screen, const QVariant& value) {
                                         return screen.setScreenSaverTimeout(value.toInt());
                                     }};
    return &cSetting;
}

const Setting* orientation()
{
    static const Setting cSetting = {"orientation", "the orientation",
                                     [](TelvaroScreen& screen, const QVariant& value) {
                                         return screen.setOrientation(value.toString());
                                     }};
    return &cSetting;
}

const Setting* fullScreen()
{
    static const Setting cSetting = {"fullScreen", "full screen", [](TelvaroScreen& screen, const QVariant& value) {
                                         return screen.setFullScreen(value.toBool());
                                     }};
    return &cSetting;
}

QString toText(const QVariant& value)
{
    if (value.userType() != QMetaType::Bool) {
        return value.toString();
    }
    return value.toBool() ? QStringLiteral("on") : QStringLiteral("off");
}

struct Change
{
    const Setting* setting;
    /// Invalid for the opposite of what is set.
    QVariant value;
};

Change switched(const Setting* setting, const QString& word)
{
    return {setting, word == cToggle ? QVariant() : QVariant(word == QLatin1String("on"))};
}

/// Reads the settings back: a service that accepts a value need not take it.
ExitStatus confirm(const QList<Change>& changes)
{
    return Service::withScreen([&changes](const TelvaroScreen& screen) {
        ExitStatus status = Done;
        for (const Change& change : changes) {
            const QVariant value = screen.property(change.setting->property);
            if (value != change.value) {
                printError(QStringLiteral("the service did not take '%1': %2 is '%3'")
                               .arg(toText(change.value), QLatin1String(change.setting->name), toText(value)));
                status = Failed;
            }
        }
        return status;
    });
}

ExitStatus apply(QList<Change> changes)
{
    const ExitStatus status = Service::withScreen([&changes](TelvaroScreen& screen) {
        QList<QDBusPendingReply<>> requests;
        for (Change& change : changes) {
            if (!change.value.isValid()) {
                change.value = !screen.property(change.setting->property).toBool();
            }
            requests.append(change.setting->write(screen, change.value));
        }
        ExitStatus result = Done;
        for (int index = 0; index < requests.size(); ++index) {
            requests[index].waitForFinished();
            if (requests.at(index).isError()) {
                printError(QStringLiteral("%1: %2").arg(QLatin1String(changes.at(index).setting->name),
                                                        Service::reason(requests.at(index).error())));
                result = Failed;
            }
        }
        return result;
    });
    return status == Done ? confirm(changes) : status;
}

struct Orientation
{
    const char* name;
    const char* degrees;
};
const std::array<Orientation, 4> cOrientations = {
    {{"landscape", "0"}, {"portrait", "90"}, {"inverse-landscape", "180"}, {"inverse-portrait", "270"}}};

QString orientationName(const QString& degrees)
{
    for (const Orientation& candidate : cOrientations) {
        if (degrees == QLatin1String(candidate.degrees)) {
            return QLatin1String(candidate.name);
        }
    }
    return {};
}

/// Returns nothing if the word is neither a name nor a number.
std::optional<QString> toDegrees(const QString& word)
{
    for (const Orientation& candidate : cOrientations) {
        if (word == QLatin1String(candidate.name)) {
            return QString(QLatin1String(candidate.degrees));
        }
    }
    bool isNumber = false;
    const int degrees = word.toInt(&isNumber);
    return isNumber ? std::optional<QString>(QString::number(degrees)) : std::nullopt;
}

QString noOrientation(const QString& word)
{
    return QStringLiteral("'%1' is neither the name of an orientation nor a number%2")
        .arg(word, Suggestion::question(word, wordsOf(QLatin1String(cOrientationWords))));
}

std::optional<int> toSeconds(const QString& command, const QString& text)
{
    const auto seconds = toNumber(command, text, 0, std::numeric_limits<int>::max());
    return seconds ? std::optional<int>(static_cast<int>(*seconds)) : std::nullopt;
}

QJsonObject screenSaverState(const TelvaroScreen& screen)
{
    return {
        {QStringLiteral("active"), screen.isScreenSaverActive()},
        {QStringLiteral("enabled"), screen.isScreenSaverEnabled()},
        {QStringLiteral("timeoutSeconds"), screen.getScreenSaverTimeout()},
    };
}

QString screenSaverText(const TelvaroScreen& screen)
{
    return QStringLiteral("%1, %2, timeout %3 s")
        .arg(toText(screen.isScreenSaverEnabled()),
             screen.isScreenSaverActive() ? QStringLiteral("active") : QStringLiteral("not active"))
        .arg(screen.getScreenSaverTimeout());
}

ExitStatus show(const QCommandLineParser& parser, const std::function<QJsonObject(const TelvaroScreen&)>& toObject,
                const std::function<QString(const TelvaroScreen&)>& toLine)
{
    return Service::withScreen([&](const TelvaroScreen& screen) {
        if (isJsonWanted(parser)) {
            printJson(toObject(screen));
        } else {
            printText(toLine(screen) + QLatin1Char('\n'));
        }
        return Done;
    });
}

ExitStatus runScreenSaver(const QCommandLineParser& parser, const QStringList& arguments)
{
    const QString action = arguments.value(0, QStringLiteral("status"));
    if (action == cTimeout) {
        if (arguments.size() < 2) {
            return usageError(cScreenSaver, QStringLiteral("SECONDS is missing"));
        }
        const std::optional<int> seconds = toSeconds(cScreenSaver, arguments.at(1));
        return seconds ? apply({{screenSaverTimeout(), *seconds}}) : Usage;
    }
    if (arguments.size() > 1) {
        return usageError(cScreenSaver, QStringLiteral("unexpected argument '%1'").arg(arguments.at(1)));
    }
    if (action != QLatin1String("status")) {
        return apply({switched(screenSaverEnabled(), action)});
    }
    return show(parser, screenSaverState, [](const TelvaroScreen& screen) {
        return QStringLiteral("screen saver %1").arg(screenSaverText(screen));
    });
}

ExitStatus runOrientation(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (!arguments.isEmpty()) {
        const std::optional<QString> degrees = toDegrees(arguments.constFirst());
        return degrees ? apply({{orientation(), *degrees}})
                       : usageError(cOrientation, noOrientation(arguments.constFirst()));
    }
    return show(
        parser,
        [](const TelvaroScreen& screen) {
            return QJsonObject{{QStringLiteral("orientation"), screen.getOrientation()}};
        },
        [](const TelvaroScreen& screen) {
            return printable(screen.getOrientation());
        });
}

ExitStatus runFullScreen(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (!arguments.isEmpty()) {
        return apply({switched(fullScreen(), arguments.constFirst())});
    }
    return show(
        parser,
        [](const TelvaroScreen& screen) {
            return QJsonObject{{QStringLiteral("fullScreen"), screen.isFullScreen()}};
        },
        [](const TelvaroScreen& screen) {
            return toText(screen.isFullScreen());
        });
}

ExitStatus showScreen(const QCommandLineParser& parser)
{
    return show(
        parser,
        [](const TelvaroScreen& screen) {
            return QJsonObject{
                {QStringLiteral("orientation"), screen.getOrientation()},
                {QStringLiteral("orientationName"), orientationName(screen.getOrientation())},
                {QStringLiteral("fullScreen"), screen.isFullScreen()},
                {QStringLiteral("screenSaver"), screenSaverState(screen)},
            };
        },
        [](const TelvaroScreen& screen) {
            Table table({QStringLiteral("SETTING"), QStringLiteral("VALUE")});
            const QString name = orientationName(screen.getOrientation());
            table.addRow({QStringLiteral("orientation"),
                          screen.getOrientation() + (name.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(name))});
            table.addRow({QStringLiteral("full screen"), toText(screen.isFullScreen())});
            table.addRow({QStringLiteral("screen saver"), screenSaverText(screen)});
            return table.toText(terminalWidth()).chopped(1);
        });
}

ExitStatus runScreen(const QCommandLineParser& parser, const QStringList& /*arguments*/)
{
    const QString command = QStringLiteral("screen");
    if (isJsonWanted(parser)) {
        for (const QString& name : {cOrientation, cFullScreen, cScreenSaver, cScreenSaverTimeout}) {
            if (parser.isSet(name)) {
                return usageError(command, QStringLiteral("--json and --%1 exclude each other").arg(name));
            }
        }
    }
    QList<Change> changes;
    if (parser.isSet(cOrientation)) {
        const std::optional<QString> degrees = toDegrees(parser.value(cOrientation));
        if (!degrees) {
            return usageError(command, noOrientation(parser.value(cOrientation)));
        }
        changes.append({orientation(), *degrees});
    }
    if (parser.isSet(cFullScreen)) {
        changes.append(switched(fullScreen(), parser.value(cFullScreen)));
    }
    if (parser.isSet(cScreenSaver)) {
        changes.append(switched(screenSaverEnabled(), parser.value(cScreenSaver)));
    }
    if (parser.isSet(cScreenSaverTimeout)) {
        const std::optional<int> seconds = toSeconds(command, parser.value(cScreenSaverTimeout));
        if (!seconds) {
            return Usage;
        }
        changes.append({screenSaverTimeout(), *seconds});
    }
    return changes.isEmpty() ? showScreen(parser) : apply(changes);
}

QList<QCommandLineOption> screenOptions()
{
    return jsonOption()
        + QList<QCommandLineOption>{
            {cOrientation, QStringLiteral("Rotates the screen's contents."), QLatin1String(cOrientationWords)},
            {cFullScreen, QStringLiteral("Gives the current view the whole screen, or not."),
             QLatin1String(cSwitchWords)},
            {cScreenSaver, QStringLiteral("Enables or disables the screen saver."), QLatin1String(cSwitchWords)},
            {cScreenSaverTimeout, QStringLiteral("The time without input after which the screen saver starts."),
             QStringLiteral("SECONDS")}};
}

} // namespace

QList<Command> screenCommands()
{
    const char* const details = "A change is read back; exits with 1 if the service has not applied it.";
    return {
        {"screen", "Shows all settings of the screen, or changes some of them.", "", details, screenOptions, runScreen},
        {"screensaver",
         "Shows or changes the screen saver's settings.",
         "[on | off | toggle | status | timeout SECONDS]",
         details,
         jsonOption,
         runScreenSaver,
         {QStringLiteral("on|off|toggle|status|timeout"), QStringLiteral("SECONDS")}},
        {"orientation",
         "Shows or changes the rotation of the screen's contents.",
         "",
         details,
         jsonOption,
         runOrientation,
         {QLatin1String(cOrientationWords)}},
        {"fullscreen",
         "Shows or changes whether the current view has the whole screen.",
         "",
         details,
         jsonOption,
         runFullScreen,
         {QLatin1String(cSwitchWords)}},
    };
}
