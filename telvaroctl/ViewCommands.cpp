// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Json.h"
#include "Table.h"

#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QDBusError>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace {

using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

const QString cApp = QStringLiteral("app");
const QString cIndex = QStringLiteral("index");

QString title(const View& view)
{
    return view.attributes.value(QStringLiteral("title"), view.info1).toString();
}

ExitStatus listViews(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (!arguments.isEmpty()) {
        return wrongArgumentCount("views");
    }
    TelvaroTaskSwitcherDBusConnector connector;
    if (!isOnCompositorDevice() || !connector.isInterfaceValid()) {
        return Failed;
    }
    const QList<View> views = connector.getViews();
    if (warningCount() > 0) {
        return Failed;
    }
    if (isJsonWanted(parser)) {
        QJsonArray array;
        for (const View& view : views) {
            array.append(toJson(view));
        }
        printJson(array);
        return Done;
    }
    Table table({QStringLiteral("UUID"), QStringLiteral("APPLICATION"), QStringLiteral("INDEX"), QStringLiteral("PID"),
                 QStringLiteral("TITLE")});
    for (const View& view : views) {
        table.addRow({view.uuid, view.appId, QString::number(view.sortIndex), QString::number(view.pid), title(view)});
    }
    printText(table.toText(terminalWidth()));
    return Done;
}

ExitStatus showCurrentView(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (!arguments.isEmpty()) {
        return wrongArgumentCount("current");
    }
    if (!isOnCompositorDevice()) {
        return Failed;
    }
    const View view = TelvaroTaskSwitcherDBusConnector().getCurrentView();
    if (warningCount() > 0) {
        return Failed;
    }
    if (isJsonWanted(parser)) {
        printJson(toJson(view));
        return Done;
    }
    printLine(
        QStringLiteral("%1  %2 %3  %4")
            .arg(printable(view.uuid), printable(view.appId), QString::number(view.sortIndex), printable(title(view))));
    return Done;
}

ExitStatus switchToUuid(const QString& uuid)
{
    View view;
    view.uuid = uuid;
    const QDBusError error = TelvaroTaskSwitcherDBusConnector().setCurrentView(view);
    if (error.isValid()) {
        printError(QStringLiteral("%1: %2").arg(error.name(), error.message()));
        return Failed;
    }
    return Done;
}

ExitStatus switchView(const QCommandLineParser& parser, const QStringList& arguments)
{
    const bool isById = parser.isSet(cApp) || parser.isSet(cIndex);
    if (isById ? !arguments.isEmpty() : arguments.size() != 1) {
        return usageError("switch", QStringLiteral("expected either UUID or --app and --index"));
    }
    if (!isById) {
        return isOnCompositorDevice() ? switchToUuid(arguments.constFirst()) : Failed;
    }
    if (!parser.isSet(cApp) || !parser.isSet(cIndex)) {
        return usageError("switch", QStringLiteral("--app and --index go together"));
    }
    bool isNumber = false;
    const uint index = parser.value(cIndex).toUInt(&isNumber);
    if (!isNumber) {
        return usageError("switch",
                          QStringLiteral("'%1' is not a number from 0 to 4294967295").arg(parser.value(cIndex)));
    }
    const bool isDone =
        isOnCompositorDevice() && TelvaroTaskSwitcherDBusConnector().switchToView(parser.value(cApp), index);
    return isDone ? Done : Failed;
}

ExitStatus step(const char* command, bool backward, const QStringList& arguments)
{
    if (!arguments.isEmpty()) {
        return wrongArgumentCount(command);
    }
    const bool isDone = isOnCompositorDevice() && TelvaroTaskSwitcherDBusConnector().iterateViews(backward);
    return isDone ? Done : Failed;
}

ExitStatus bringToTop(const QStringList& arguments)
{
    if (arguments.size() != 1) {
        return wrongArgumentCount("top");
    }
    if (!isOnCompositorDevice()) {
        return Failed;
    }
    TelvaroTaskSwitcherDBusConnector connector;
    connector.surfaceToTop(arguments.constFirst());
    if (warningCount() > 0) {
        return Failed;
    }
    const bool isCurrent = connector.isCurrentView(arguments.constFirst());
    if (warningCount() > 0) {
        return Failed;
    }
    if (!isCurrent) {
        printError(
            QStringLiteral("the service did not make a view of '%1' the current one").arg(arguments.constFirst()));
        return Failed;
    }
    return Done;
}

ExitStatus isCurrent(const QStringList& arguments)
{
    if (arguments.size() != 1) {
        return wrongArgumentCount("is-current");
    }
    if (!isOnCompositorDevice()) {
        return Failed;
    }
    const bool answer = TelvaroTaskSwitcherDBusConnector().isCurrentView(arguments.constFirst());
    // The library compares two unknown process ids as equal, so a warning outweighs the result.
    return answer && warningCount() == 0 ? Done : Failed;
}

ExitStatus showPid(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (arguments.size() != 1) {
        return wrongArgumentCount("pid");
    }
    const uint32_t pid = TelvaroTaskSwitcherDBusConnector().processNameToPid(arguments.constFirst());
    if (warningCount() > 0) {
        return Failed;
    }
    if (isJsonWanted(parser)) {
        printJson(QJsonObject{{QStringLiteral("pid"), static_cast<qint64>(pid)}});
    } else {
        printLine(QString::number(pid));
    }
    return Done;
}

} // namespace

QList<Command> viewCommands()
{
    return {
        {"views", "Lists the views in the service's order.", "", "", jsonOption, listViews},
        {"current", "Shows the current view.", "", "Exits with 1 where no view is current.", jsonOption,
         showCurrentView},
        {"switch", "Makes a view the current one.", "UUID | --app ID --index N", "",
         [] {
             return QList<QCommandLineOption>{
                 {cApp, QStringLiteral("The view's application."), QStringLiteral("ID")},
                 {cIndex, QStringLiteral("The view's sort index in its application."), QStringLiteral("N")}};
         },
         switchView},
        {"next", "Steps to the next view of the current application, from the last to the first.", "", "", noOptions,
         [](const QCommandLineParser& /*parser*/, const QStringList& arguments) {
             return step("next", false, arguments);
         }},
        {"previous", "Steps to the previous view of the current application, from the first to the last.", "", "",
         noOptions,
         [](const QCommandLineParser& /*parser*/, const QStringList& arguments) {
             return step("previous", true, arguments);
         }},
        {"top", "Makes the view of a process, given by its name, the current one.", "PROCESS",
         "Reads the current view back and exits with 1 if it is not one of that process.", noOptions,
         [](const QCommandLineParser& /*parser*/, const QStringList& arguments) {
             return bringToTop(arguments);
         }},
        {"is-current", "Tests whether the current view belongs to a process, given by its name.", "PROCESS",
         "Prints nothing: exits with 0 if it does and with 1 if not.", noOptions,
         [](const QCommandLineParser& /*parser*/, const QStringList& arguments) {
             return isCurrent(arguments);
         }},
        {"pid", "Prints the process id of the one running process of a name.", "PROCESS", "", jsonOption, showPid},
    };
}
