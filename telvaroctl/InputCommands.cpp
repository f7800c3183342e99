// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Service.h"
#include "TimeLimit.h"

#include <TelvaroDBusDefinitions.h>

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <limits>

namespace {

const QString cView = QStringLiteral("view");
const QString cSeconds = QStringLiteral("seconds");
const QString cButton = QStringLiteral("button");
const QString cPointer = QStringLiteral("pointer");
const QString cPress = QStringLiteral("press");
const QString cRelease = QStringLiteral("release");

constexpr auto cDetails =
    "Works only in telvaro-session, or if the compositor runs with --remote-control. Returns when "
    "the input has been made; without --timeout there is no time limit.";

/// Has the compositor take the step of a script.
ExitStatus take(const QCommandLineParser& parser, const QString& step)
{
    if (!Service::connect()) {
        return Failed;
    }
    int timeout = TimeLimit::beyond();
    if (!requestedTimeout(parser)) {
        TimeLimit::lift();
        timeout = std::numeric_limits<int>::max();
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(TelvaroDBusDefinitions::getServiceName(), QStringLiteral("/desk"),
                                       QStringLiteral("de.Telvaro.desk"), QStringLiteral("Take"));
    call.setArguments({step});
    const QDBusMessage reply = Service::bus().call(call, QDBus::Block, timeout);
    if (reply.type() == QDBusMessage::ReplyMessage) {
        return Done;
    }
    const QDBusError error(reply);
    switch (error.type()) {
    case QDBusError::Failed:
        printError(error.message());
        break;
    case QDBusError::ServiceUnknown:
        printError(Service::notOnTheBus());
        break;
    case QDBusError::UnknownObject:
    case QDBusError::UnknownInterface:
    case QDBusError::UnknownMethod:
        printError(QStringLiteral("the service takes no steps: it is not the compositor of a telvaro-session, nor one "
                                  "with --remote-control"));
        break;
    default:
        printError(Service::reason(error));
    }
    return Failed;
}

ExitStatus take(const QCommandLineParser& parser, const QString& action, const QJsonValue& value)
{
    return take(parser, QString::fromUtf8(QJsonDocument(QJsonObject{{action, value}}).toJson(QJsonDocument::Compact)));
}

/// Adds the numbers to the list. Returns false, and prints why, if one is none.
bool toNumbers(const QString& command, const QStringList& texts, QJsonArray& numbers)
{
    for (const QString& text : texts) {
        bool isNumber = false;
        numbers.append(text.toDouble(&isNumber));
        if (!isNumber) {
            usageError(command, QStringLiteral("'%1' is not a number").arg(text));
            return false;
        }
    }
    return true;
}

/// Adds the members that the options stand for. Returns false, and prints why, if one is wrong.
bool addOptions(const QString& command, const QCommandLineParser& parser, QJsonObject& members)
{
    const QStringList given = parser.optionNames();
    if (given.contains(cView)) {
        members.insert(QStringLiteral("in"), cView);
    }
    QJsonArray seconds;
    if (given.contains(cSeconds) && !toNumbers(command, {parser.value(cSeconds)}, seconds)) {
        return false;
    }
    if (!seconds.isEmpty()) {
        members.insert(cSeconds, seconds.first());
    }
    return true;
}

ExitStatus press(const QString& command, const QCommandLineParser& parser, const QStringList& arguments)
{
    QJsonArray position;
    QJsonObject members;
    if (!toNumbers(command, arguments, position) || !addOptions(command, parser, members)) {
        return Usage;
    }
    members.insert(QStringLiteral("x"), position.at(0));
    members.insert(QStringLiteral("y"), position.at(1));
    if (command == QLatin1String("click") && parser.isSet(cButton)) {
        members.insert(cButton, parser.value(cButton));
    }
    return take(parser, command, members);
}

ExitStatus drag(const QCommandLineParser& parser, const QStringList& arguments)
{
    const QString command = QStringLiteral("drag");
    QJsonArray from;
    QJsonArray to;
    QJsonObject members;
    if (!toNumbers(command, arguments.mid(0, 2), from) || !toNumbers(command, arguments.mid(2), to)
        || !addOptions(command, parser, members)) {
        return Usage;
    }
    members.insert(QStringLiteral("from"), from);
    members.insert(QStringLiteral("to"), to);
    if (parser.isSet(cPointer)) {
        members.insert(QStringLiteral("with"), cPointer);
    }
    return take(parser, command, members);
}

ExitStatus scroll(const QCommandLineParser& parser, const QStringList& arguments)
{
    const QString command = QStringLiteral("scroll");
    QJsonArray position;
    QJsonObject members;
    const auto count = toNumber(command, arguments.value(3, QStringLiteral("1")), 1, 1000);
    if (!count || !toNumbers(command, arguments.mid(0, 2), position) || !addOptions(command, parser, members)) {
        return Usage;
    }
    members.insert(QStringLiteral("x"), position.at(0));
    members.insert(QStringLiteral("y"), position.at(1));
    const QString& direction = arguments.at(2);
    const bool isVertical = direction == QLatin1String("up") || direction == QLatin1String("down");
    const bool isBackward = direction == QLatin1String("up") || direction == QLatin1String("left");
    members.insert(isVertical ? QStringLiteral("down") : QStringLiteral("right"), isBackward ? -*count : *count);
    return take(parser, command, members);
}

ExitStatus key(const QCommandLineParser& parser, const QStringList& arguments)
{
    const QString command = QStringLiteral("key");
    QJsonObject members;
    if (!addOptions(command, parser, members)) {
        return Usage;
    }
    if (parser.isSet(cPress) + parser.isSet(cRelease) + parser.isSet(cSeconds) > 1) {
        return usageError(command, QStringLiteral("expected only one of --press, --release and --seconds"));
    }
    if (parser.isSet(cPress) || parser.isSet(cRelease)) {
        members.insert(parser.isSet(cPress) ? cPress : cRelease, arguments.constFirst());
    } else if (parser.isSet(cSeconds)) {
        members.insert(QStringLiteral("hold"), arguments.constFirst());
    } else {
        return take(parser, command, arguments.constFirst());
    }
    return take(parser, command, members);
}

QCommandLineOption viewOption()
{
    return {cView, QStringLiteral("Positions are those in the current view's window.")};
}

QCommandLineOption secondsOption(const char* description)
{
    return {cSeconds, QLatin1String(description), QStringLiteral("SECONDS")};
}

} // namespace

QList<Command> inputCommands()
{
    const QStringList position{QStringLiteral("X"), QStringLiteral("Y")};
    return {
        {"tap", "Taps with a finger on a position of the screen.", "", cDetails,
         [] {
             return QList<QCommandLineOption>{viewOption(), secondsOption("Lifts the finger after this time.")};
         },
         [](const QCommandLineParser& parser, const QStringList& arguments) {
             return press(QStringLiteral("tap"), parser, arguments);
         },
         position, 2},
        {"click", "Clicks with the pointer on a position of the screen.", "", cDetails,
         [] {
             return QList<QCommandLineOption>{viewOption(), secondsOption("Releases the button after this time."),
                                              QCommandLineOption(cButton,
                                                                 QStringLiteral("The button, by default the left one."),
                                                                 QStringLiteral("left|right|middle"))};
         },
         [](const QCommandLineParser& parser, const QStringList& arguments) {
             return press(QStringLiteral("click"), parser, arguments);
         },
         position, 2},
        {"drag",
         "Drags with a finger from one position to another.",
         "",
         cDetails,
         [] {
             return QList<QCommandLineOption>{
                 viewOption(), secondsOption("How long the drag takes, by default 0.3."),
                 QCommandLineOption(cPointer, QStringLiteral("Drags with the left button of the pointer."))};
         },
         drag,
         {QStringLiteral("X1"), QStringLiteral("Y1"), QStringLiteral("X2"), QStringLiteral("Y2")},
         4},
        {"scroll", "Turns the wheel of the pointer, by one step or more.", "", cDetails,
         [] {
             return QList<QCommandLineOption>{viewOption()};
         },
         scroll, position + QStringList{QStringLiteral("up|down|left|right"), QStringLiteral("STEPS")}, 3},
        {"type",
         "Types a text.",
         "",
         cDetails,
         noOptions,
         [](const QCommandLineParser& parser, const QStringList& arguments) {
             return take(parser, QStringLiteral("type"), arguments.constFirst());
         },
         {QStringLiteral("TEXT")},
         1},
        {"key",
         "Presses and releases keys, such as Ctrl+Alt+Right.",
         "",
         cDetails,
         [] {
             return QList<QCommandLineOption>{QCommandLineOption(cPress, QStringLiteral("Does not release the keys.")),
                                              QCommandLineOption(cRelease, QStringLiteral("Only releases the keys.")),
                                              secondsOption("Holds the keys for this time.")};
         },
         key,
         {QStringLiteral("KEYS")},
         1},
        {"step",
         "Takes a step of a session's script, given as JSON.",
         "",
         cDetails,
         noOptions,
         [](const QCommandLineParser& parser, const QStringList& arguments) {
             return take(parser, arguments.constFirst());
         },
         {QStringLiteral("STEP")},
         1},
    };
}
