// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusEnd.h"
#include "Command.h"
#include "Console.h"
#include "Service.h"
#include "TimeLimit.h"

#include <TelvaroTaskSwitcher.h>

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QString>

#include <algorithm>
#include <limits>
#include <optional>

namespace {

using View = TelvaroViewModel::View;

const QString cApp = QStringLiteral("app");
const QString cIndex = QStringLiteral("index");
const QString cView = QStringLiteral("view");
const QString cCurrent = QStringLiteral("current");
const QString cService = QStringLiteral("service");
const QString cGone = QStringLiteral("gone");

/// What is waited for.
struct Condition
{
    QString app;
    /// -1 for any.
    qint64 index;
    QString view;
    bool isCurrentWanted;
    bool isService;
    bool isGone;

    bool holds(const TelvaroTaskSwitcher& switcher) const
    {
        // Without a bus nothing is known.
        const bool isAbsent = switcher.getStatus() == TelvaroLiveObject::Absent && Service::bus().isConnected();
        const bool isReady = switcher.getStatus() == TelvaroLiveObject::Ready;
        if (isService) {
            return isGone ? isAbsent : isReady;
        }
        // A service that is absent has no views.
        return (isReady || isAbsent) && isFound(switcher) != isGone;
    }

    QString description() const
    {
        QString thing = !view.isEmpty() ? QStringLiteral("the view '%1'").arg(view)
            : !app.isEmpty()            ? QStringLiteral("a view of '%1'").arg(app)
            : isService                 ? QStringLiteral("the service")
                                        : QStringLiteral("a view");
        thing += index < 0 ? QString() : QStringLiteral(" with the index %1").arg(index);
        thing += isCurrentWanted ? QStringLiteral(" that is current") : QString();
        return isGone ? QStringLiteral("the end of ") + thing : thing;
    }

private:
    bool isFound(const TelvaroTaskSwitcher& switcher) const
    {
        const QList<View>& views = switcher.getViews()->getViews();
        return std::any_of(views.begin(), views.end(), [this, &switcher](const View& candidate) {
            return (app.isEmpty() || candidate.appId == app) && (index < 0 || candidate.sortIndex == index)
                && (view.isEmpty() || candidate.uuid == view)
                && (!isCurrentWanted || candidate.uuid == switcher.getCurrentView());
        });
    }
};

ExitStatus wait(const QCommandLineParser& parser, const QStringList& /*arguments*/)
{
    const QString command = QStringLiteral("wait");
    const bool hasIndex = parser.isSet(cIndex);
    const std::optional<qint64> index = hasIndex
        ? toNumber(command, parser.value(cIndex), 0, std::numeric_limits<uint32_t>::max())
        : std::optional<qint64>(-1);
    if (!index) {
        return Usage;
    }
    const Condition condition{parser.value(cApp),     *index,
                              parser.value(cView),    parser.isSet(cCurrent),
                              parser.isSet(cService), parser.isSet(cGone)};
    if (condition.isService && (parser.isSet(cApp) || parser.isSet(cView) || condition.isCurrentWanted)) {
        return usageError(command, QStringLiteral("expected either --service or a view"));
    }
    if (hasIndex && !parser.isSet(cApp)) {
        return usageError(command, QStringLiteral("--index goes with --app"));
    }
    if (!Service::connect()) {
        return Failed;
    }
    TimeLimit::lift();
    if (requestedTimeout(parser)) {
        TimeLimit::expect(QStringLiteral("waited in vain for %1").arg(condition.description()));
    }
    const BusEnd busEnd;
    const TelvaroTaskSwitcher switcher;
    const auto check = [&condition, &switcher] {
        if (condition.holds(switcher)) {
            QCoreApplication::exit(Done);
        }
    };
    QObject::connect(&switcher, &TelvaroTaskSwitcher::statusChanged, QCoreApplication::instance(), check);
    QObject::connect(&switcher, &TelvaroTaskSwitcher::viewsChanged, QCoreApplication::instance(), check);
    QObject::connect(&switcher, &TelvaroTaskSwitcher::currentViewChanged, QCoreApplication::instance(), check);
    return static_cast<ExitStatus>(QCoreApplication::exec());
}

} // namespace

QList<Command> waitCommands()
{
    return {
        {"wait", "Waits for a view or for the service, or for its end.", "",
         "Waits for the view that the options describe, by default any view, or for a service that answers. Exits with "
         "0 as soon as it is there, at once if it is already, and with 1 if the bus ends or when the limit of "
         "--timeout has passed.",
         [] {
             return QList<QCommandLineOption>{
                 {cApp, QStringLiteral("A view of this application."), QStringLiteral("APP")},
                 {cIndex, QStringLiteral("The view with this sort index in the application."), QStringLiteral("INDEX")},
                 {cView, QStringLiteral("The view with this unique id."), QStringLiteral("UUID")},
                 {cCurrent, QStringLiteral("The view has to be current.")},
                 {cService, QStringLiteral("The service.")},
                 {cGone, QStringLiteral("Waits until there is no such view, or no service.")}};
         },
         wait},
    };
}
