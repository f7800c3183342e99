// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "script/ScriptPlayer.h"

#include "bus/BusService.h"
#include "bus/CallGate.h"
#include "script/ScriptFile.h"
#include "state/ScreenSaver.h"
#include "state/ViewList.h"

#include <QThread>
#include <QTimer>

#include <csignal>
#include <utility>

#include <unistd.h>

namespace {

bool matches(const Script::ViewPattern& pattern, const View& view, const QString& current)
{
    const bool isWanted = view.appId == pattern.appId && (!pattern.title || view.title == *pattern.title);
    switch (pattern.state) {
    case Script::ViewPattern::State::Current:
        return isWanted && view.uuid == current;
    case Script::ViewPattern::State::Unresponsive:
        return isWanted && !view.isResponding;
    default:
        return isWanted;
    }
}

} // namespace

ScriptPlayer::ScriptPlayer(Script::Plan plan, Stage stage, QObject* parent)
    : QObject(parent)
    , mPlan(std::move(plan))
    , mStage(std::move(stage))
    , mViews(mStage.views)
{
    connect(&mStage.gate, &CallGate::called, this, &ScriptPlayer::noteCall);
    connect(&mViews, &ViewList::viewsChanged, this, &ScriptPlayer::noteViews);
}

ScriptPlayer::~ScriptPlayer()
{
    const QSet<pid_t> processes = mStoppedProcesses;
    for (const pid_t process : processes) {
        resume(process);
    }
}

MaybeError ScriptPlayer::start()
{
    mIsStarting = true;
    for (const Script::Step& step : mPlan.steps) {
        if (mError) {
            break;
        }
        if (step.after) {
            continue;
        }
        if (step.delayMilliseconds > 0) {
            takeLater(step);
        } else {
            take(step);
        }
    }
    mIsStarting = false;
    return mError;
}

MaybeError ScriptPlayer::expectView(const QString& uuid) const
{
    if (qAsConst(mViews).find(uuid) != nullptr) {
        return {};
    }
    return Error{QStringLiteral("there is no view \"%1\"").arg(uuid)};
}

void ScriptPlayer::takeStep(const QByteArray& json, const Done& done)
{
    const Result<Script::Action> action = ScriptFile::readAction(json, mStage.keymap);
    if (const auto* const error = std::get_if<Error>(&action)) {
        done(*error);
    } else {
        perform(std::get<Script::Action>(action), done);
    }
}

void ScriptPlayer::take(const Script::Step& step)
{
    perform(step.action, [this, &step](const MaybeError& error) {
        if (error) {
            fail(step, *error);
        }
    });
}

void ScriptPlayer::fail(const Script::Step& step, const Error& error)
{
    if (mError) {
        return;
    }
    mError = Error{QStringLiteral("%1: step %2: %3").arg(mPlan.fileName, QString::number(step.number), error.text)};
    if (!mIsStarting) {
        Q_EMIT failed(*mError);
    }
}

void ScriptPlayer::perform(const Script::Action& action, const Done& done)
{
    std::visit(
        [this, &done](const auto& specific) {
            perform(specific, done);
        },
        action);
}

void ScriptPlayer::takeLater(const Script::Step& step)
{
    const auto takeStep = [this, &step] {
        if (!mError) {
            take(step);
        }
    };
    if (step.delayMilliseconds > 0) {
        QTimer::singleShot(step.delayMilliseconds, Qt::PreciseTimer, this, takeStep);
    } else {
        // Queued, so that the step is taken before the next call of a program that waits for the reply to this one.
        QMetaObject::invokeMethod(this, takeStep, Qt::QueuedConnection);
    }
}

void ScriptPlayer::noteCall(const BusCall& call)
{
    for (const Script::Step& step : mPlan.steps) {
        const auto* const pattern = step.after ? std::get_if<CallPattern>(&step.after->what) : nullptr;
        if (pattern != nullptr && pattern->matches(call)) {
            noteEvent(step);
        }
    }
}

void ScriptPlayer::noteViews()
{
    for (const Script::Step& step : mPlan.steps) {
        const auto* const pattern = step.after ? std::get_if<Script::ViewPattern>(&step.after->what) : nullptr;
        if (pattern != nullptr) {
            noteView(step, *pattern);
        }
    }
}

void ScriptPlayer::noteView(const Script::Step& step, const Script::ViewPattern& pattern)
{
    QSet<QString> present;
    QSet<QString> matching;
    for (const View& view : mViews.views()) {
        present.insert(view.uuid);
        if (matches(pattern, view, mViews.current())) {
            matching.insert(view.uuid);
        }
    }
    const QSet<QString> before = std::exchange(mMatches[step.number], matching);
    const bool waitsForEnd = pattern.state == Script::ViewPattern::State::Gone;
    const int count = waitsForEnd ? (before - present).size() : (matching - before).size();
    for (int i = 0; i < count; ++i) {
        noteEvent(step);
    }
}

void ScriptPlayer::noteEvent(const Script::Step& step)
{
    if (++mCounts[step.number] == step.after->times) {
        takeLater(step);
    }
}

void ScriptPlayer::perform(const Script::Input& action, const Done& done)
{
    mStage.injector.inject(action.gesture, done);
}

void ScriptPlayer::perform(const Script::Restart& action, const Done& done)
{
    if (std::exchange(mIsRestarting, true)) {
        done(Error{QStringLiteral("the Wayland server is restarting already")});
        return;
    }
    mStage.busService.giveNamesBack();
    mStage.stopServer();
    while (!mViews.views().isEmpty()) {
        mViews.remove(mViews.views().constFirst().uuid);
    }
    mOwnViews.clear();
    QTimer::singleShot(action.milliseconds, Qt::PreciseTimer, this, [this, done] {
        mIsRestarting = false;
        const MaybeError error = execute(Script::SetService{true});
        done(error ? error : mStage.startServer());
    });
}

MaybeError ScriptPlayer::execute(const Script::AddView& action)
{
    if (qAsConst(mViews).find(action.view.uuid) != nullptr) {
        return Error{QStringLiteral("there is a view \"%1\" already").arg(action.view.uuid)};
    }
    mOwnViews.insert(action.view.uuid);
    mViews.add(action.view, action.sortIndex);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::RemoveView& action)
{
    if (MaybeError error = expectView(action.uuid)) {
        return error;
    }
    if (!mOwnViews.remove(action.uuid)) {
        return Error{
            QStringLiteral("the view \"%1\" is a window, which only its application removes").arg(action.uuid)};
    }
    mViews.remove(action.uuid);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::ChangeView& action)
{
    if (MaybeError error = expectView(action.uuid)) {
        return error;
    }
    // A window that hangs is stopped or closed by its process.
    if (action.change.pid && !mOwnViews.contains(action.uuid)) {
        return Error{
            QStringLiteral("the view \"%1\" is a window, whose \"pid\" is that of its process").arg(action.uuid)};
    }
    mViews.change(action.uuid, action.change);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::OrderViews& action)
{
    for (const QString& uuid : action.uuids) {
        if (MaybeError error = expectView(uuid)) {
            return error;
        }
    }
    mViews.arrange(action.uuids);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::AnnounceCurrentView& action)
{
    mViews.announceAsCurrent(action.text);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::SetBlanking& action)
{
    mStage.screenSaver.setAutomatic(action.isAutomatic);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::Call& action)
{
    const QDBusMessage reply = mStage.gate.callOwnObject(mStage.busService.connection(), action.path, action.interface,
                                                         action.member, action.arguments);
    if (reply.type() == QDBusMessage::ErrorMessage) {
        return Error{QStringLiteral("%1: %2").arg(reply.errorName(), reply.errorMessage())};
    }
    return {};
}

MaybeError ScriptPlayer::execute(const Script::SetScreenSaverActive& action)
{
    if (!action.isActive) {
        mStage.screenSaver.noteInput();
    } else if (!mStage.screenSaver.activate()) {
        return Error{QStringLiteral("the screen saver is disabled")};
    }
    return {};
}

MaybeError ScriptPlayer::execute(const Script::AddFault& action)
{
    mStage.gate.faults().add(action.fault);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::EndFault& action)
{
    mStage.gate.faults().remove(action.calls);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::SetService& action)
{
    if (!action.isThere) {
        mStage.busService.giveNamesBack();
        return {};
    }
    if (MaybeError error = mStage.busService.takeName()) {
        return error;
    }
    mStage.busService.takeNotificationName();
    return {};
}

MaybeError ScriptPlayer::execute(const Script::Freeze& action)
{
    QThread::msleep(static_cast<unsigned long>(action.milliseconds));
    return {};
}

MaybeError ScriptPlayer::execute(const Script::Hang& action)
{
    QStringList ownViews;
    QSet<pid_t> processes;
    for (const View& view : mViews.views()) {
        if (view.appId != action.appId) {
            continue;
        }
        const auto process = static_cast<pid_t>(view.pid);
        if (mOwnViews.contains(view.uuid)) {
            ownViews.append(view.uuid);
        } else if (process > 0 && process != ::getpid()) {
            processes.insert(process);
        }
    }
    if (ownViews.isEmpty() && processes.isEmpty()) {
        return Error{QStringLiteral("there is no view of the application \"%1\"").arg(action.appId)};
    }
    for (const pid_t process : qAsConst(processes)) {
        if (::kill(process, SIGSTOP) != 0) {
            return Error{QStringLiteral("cannot stop the process %1: %2").arg(process).arg(qt_error_string())};
        }
        mStoppedProcesses.insert(process);
    }
    for (const QString& uuid : qAsConst(ownViews)) {
        mViews.setResponding(uuid, false);
    }
    if (action.milliseconds) {
        QTimer::singleShot(*action.milliseconds, Qt::PreciseTimer, this, [this, processes, ownViews] {
            for (const pid_t process : processes) {
                resume(process);
            }
            for (const QString& uuid : ownViews) {
                mViews.setResponding(uuid, true);
            }
        });
    }
    return {};
}

void ScriptPlayer::resume(pid_t process)
{
    ::kill(process, SIGCONT);
    mStoppedProcesses.remove(process);
}

MaybeError ScriptPlayer::execute(const Script::End& action)
{
    Q_EMIT ended(action.status);
    return {};
}
