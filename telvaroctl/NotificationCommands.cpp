// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"

#include <TelvaroNotificationDBusConnector.h>

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QString>

namespace {

const QString cIcon = QStringLiteral("icon");
const QString cAction = QStringLiteral("action");

ExitStatus notify(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (arguments.isEmpty() || arguments.size() > 2) {
        return wrongArgumentCount("notify");
    }
    QStringList actions;
    const QStringList values = parser.values(cAction);
    for (const QString& value : values) {
        const int separator = value.indexOf(QLatin1Char('='));
        if (separator < 1) {
            return usageError("notify", QStringLiteral("'%1' is not of the form ID=LABEL").arg(value));
        }
        actions << value.left(separator) << value.mid(separator + 1);
    }
    if (!isOnCompositorDevice()) {
        return Failed;
    }
    TelvaroNotificationDBusConnector().notify(parser.value(cIcon), arguments.at(0), arguments.value(1), actions);
    return doneUnlessWarned();
}

} // namespace

QList<Command> notificationCommands()
{
    return {
        {"notify", "Posts a notification.", "SUMMARY [BODY]",
         "The library does not report whether the service accepted; the exit status says\nwhether it was asked.",
         [] {
             return QList<QCommandLineOption>{
                 {cIcon, QStringLiteral("Name or path of an icon."), QStringLiteral("ICON")},
                 {cAction,
                  QStringLiteral("A button: an identifier, read as the name of an icon, and its\n"
                                 "label. May be given more than once."),
                  QStringLiteral("ID=LABEL")}};
         },
         notify},
    };
}
