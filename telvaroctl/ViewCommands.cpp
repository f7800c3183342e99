// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Json.h"
#include "Service.h"
#include "Table.h"
#include "Template.h"
#include "TimeLimit.h"
#include "ViewFields.h"

#include <TelvaroTaskSwitcher.h>

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QDBusPendingReply>
#include <QJsonArray>
#include <QString>

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace {

using View = TelvaroViewModel::View;

const QString cApp = QStringLiteral("app");
const QString cIndex = QStringLiteral("index");

QList<QCommandLineOption> formatOptions()
{
    return Template::options(ViewFields::names());
}

/// Calls the function with the service's views and with the template, if there is one.
ExitStatus withViews(const char* command, const QCommandLineParser& parser,
                     const std::function<ExitStatus(const TelvaroTaskSwitcher&, const std::optional<Template>&)>& show)
{
    const auto format = Template::fromOption(parser, ViewFields::names());
    if (const Error* const error = std::get_if<Error>(&format)) {
        return usageError(QLatin1String(command), error->text);
    }
    return Service::withTaskSwitcher([&show, &format](const TelvaroTaskSwitcher& taskSwitcher) {
        return show(taskSwitcher, std::get<std::optional<Template>>(format));
    });
}

ExitStatus listViews(const QCommandLineParser& parser, const QStringList& /*arguments*/)
{
    return withViews(
        "views", parser, [&parser](const TelvaroTaskSwitcher& switcher, const std::optional<Template>& format) {
            QJsonArray array;
            QString lines;
            Table table({QStringLiteral("UUID"), QStringLiteral("APPLICATION"), QStringLiteral("INDEX"),
                         QStringLiteral("PID"), QStringLiteral("CURRENT"), QStringLiteral("TITLE")});
            for (const View& view : switcher.getViews()->getViews()) {
                const bool isCurrent = view.uuid == switcher.getCurrentView();
                const QVariantMap fields = ViewFields::of(view, isCurrent);
                if (format) {
                    lines += format->render(fields) + QLatin1Char('\n');
                }
                array.append(toJson(fields));
                table.addRow({view.uuid, view.appId, QString::number(view.sortIndex), QString::number(view.pid),
                              isCurrent ? QStringLiteral("*") : QString(), ViewFields::title(view)});
            }
            if (isJsonWanted(parser)) {
                printJson(array);
            } else {
                printText(format ? lines : table.toText(terminalWidth()));
            }
            return Done;
        });
}

ExitStatus showCurrentView(const QCommandLineParser& parser, const QStringList& /*arguments*/)
{
    return withViews(
        "current", parser, [&parser](const TelvaroTaskSwitcher& switcher, const std::optional<Template>& format) {
            const View view = switcher.getViews()->getView(switcher.getCurrentView());
            if (view.uuid.isEmpty()) {
                printError(QStringLiteral("no view is current"));
                return Failed;
            }
            const QVariantMap fields = ViewFields::of(view, true);
            if (isJsonWanted(parser)) {
                printJson(toJson(fields));
            } else if (format) {
                printLine(format->render(fields));
            } else {
                printLine(printable(
                    QStringList({view.uuid, view.appId, QString::number(view.sortIndex), ViewFields::title(view)})
                        .join(QStringLiteral("  "))));
            }
            return Done;
        });
}

ExitStatus sent(const QDBusPendingReply<>& request)
{
    return Service::waitFor(request) ? Done : Failed;
}

/// Makes the application's view with the lowest index current, if none of them is current already.
ExitStatus switchToApplication(TelvaroTaskSwitcher& switcher, const QString& appId)
{
    QList<View> views;
    const QList<View>& all = switcher.getViews()->getViews();
    std::copy_if(all.begin(), all.end(), std::back_inserter(views), [&appId](const View& view) {
        return view.appId == appId;
    });
    if (views.isEmpty()) {
        printError(QStringLiteral("the application '%1' has no view").arg(appId));
        return Failed;
    }
    const auto rank = [&switcher](const View& view) {
        return std::make_pair(view.uuid != switcher.getCurrentView(), view.sortIndex);
    };
    const View view = *std::min_element(views.begin(), views.end(), [&rank](const View& left, const View& right) {
        return rank(left) < rank(right);
    });
    if (views.size() > 1) {
        printError(QStringLiteral("'%1' has %2 views; this is the one with the index %3")
                       .arg(appId)
                       .arg(views.size())
                       .arg(view.sortIndex));
    }
    return sent(switcher.switchTo(view.uuid));
}

ExitStatus switchView(const QCommandLineParser& parser, const QStringList& arguments)
{
    const QString command = QStringLiteral("switch");
    if (parser.isSet(cApp) != arguments.isEmpty()) {
        return usageError(command, QStringLiteral("expected either UUID or --app"));
    }
    if (!parser.isSet(cIndex)) {
        if (parser.isSet(cApp)) {
            return Service::withTaskSwitcher([&parser](TelvaroTaskSwitcher& switcher) {
                return switchToApplication(switcher, parser.value(cApp));
            });
        }
        if (!Service::connect()) {
            return Failed;
        }
        TelvaroTaskSwitcher switcher;
        switcher.setTimeout(TimeLimit::beyond());
        return sent(switcher.switchTo(arguments.constFirst()));
    }
    if (!parser.isSet(cApp)) {
        return usageError(command, QStringLiteral("--index goes with --app"));
    }
    const auto index = toNumber(command, parser.value(cIndex), 0, std::numeric_limits<uint32_t>::max());
    if (!index) {
        return Usage;
    }
    return Service::withTaskSwitcher([&parser, index](TelvaroTaskSwitcher& switcher) {
        const QString appId = parser.value(cApp);
        const QList<View>& views = switcher.getViews()->getViews();
        const bool isThere = std::any_of(views.begin(), views.end(), [&appId, index](const View& view) {
            return view.appId == appId && view.sortIndex == *index;
        });
        if (!isThere) {
            printError(QStringLiteral("the application '%1' has no view with the index %2").arg(appId).arg(*index));
            return Failed;
        }
        return sent(switcher.switchToView(appId, static_cast<uint32_t>(*index)));
    });
}

ExitStatus step(QDBusPendingReply<> (TelvaroTaskSwitcher::*step)())
{
    return Service::withTaskSwitcher([step](TelvaroTaskSwitcher& switcher) {
        if (switcher.getViews()->getCurrentRow() < 0) {
            printError(QStringLiteral("no view is current"));
            return Failed;
        }
        return sent((switcher.*step)());
    });
}

} // namespace

QList<Command> viewCommands()
{
    return {
        {"views", "Lists the views in the service's order.", "", "The current view is marked with a star.",
         formatOptions, listViews},
        {"current", "Shows the current view.", "", "Exits with 1 if no view is current.", formatOptions,
         showCurrentView},
        {"switch",
         "Makes a view the current one.",
         "UUID | --app APP [--index INDEX]",
         "Without --index, takes the application's view with the lowest one, unless one of them is current already.",
         [] {
             return QList<QCommandLineOption>{
                 {cApp, QStringLiteral("The view's application."), QStringLiteral("APP")},
                 {cIndex, QStringLiteral("The view's sort index in its application."), QStringLiteral("INDEX")}};
         },
         switchView,
         {QStringLiteral("UUID")}},
        {"next", "Switches to the application's next view, wrapping around.", "", "", noOptions,
         [](const QCommandLineParser& /*parser*/, const QStringList& /*arguments*/) {
             return step(&TelvaroTaskSwitcher::next);
         }},
        {"previous", "Switches to the application's previous view, wrapping around.", "", "", noOptions,
         [](const QCommandLineParser& /*parser*/, const QStringList& /*arguments*/) {
             return step(&TelvaroTaskSwitcher::previous);
         }},
    };
}
