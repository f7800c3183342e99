// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "script/ScriptPlayer.h"

#include "bus/BusService.h"
#include "bus/CallGate.h"
#include "state/ScreenSaver.h"
#include "state/ViewList.h"

#include <QThread>
#include <QTimer>

#include <utility>

ScriptPlayer::ScriptPlayer(Script::Plan plan, ViewList& views, ScreenSaver& screenSaver, CallGate& gate,
                           BusService& busService, QObject* parent)
    : QObject(parent)
    , mPlan(std::move(plan))
    , mViews(views)
    , mScreenSaver(screenSaver)
    , mGate(gate)
    , mBusService(busService)
{
    connect(&gate, &CallGate::called, this, &ScriptPlayer::noteCall);
    connect(&views, &ViewList::viewsChanged, this, &ScriptPlayer::noteViews);
}

MaybeError ScriptPlayer::start()
{
    for (const Script::Step& step : mPlan.steps) {
        if (step.after) {
            continue;
        }
        if (step.delayMilliseconds > 0) {
            takeLater(step);
        } else if (const MaybeError error = take(step)) {
            mHasFailed = true;
            return error;
        }
    }
    return {};
}

MaybeError ScriptPlayer::expectView(const QString& uuid) const
{
    if (qAsConst(mViews).find(uuid) != nullptr) {
        return {};
    }
    return Error{QStringLiteral("there is no view \"%1\"").arg(uuid)};
}

MaybeError ScriptPlayer::take(const Script::Step& step)
{
    const MaybeError error = std::visit(
        [this](const auto& action) {
            return execute(action);
        },
        step.action);
    if (!error) {
        return {};
    }
    return Error{QStringLiteral("%1: step %2: %3").arg(mPlan.fileName, QString::number(step.number), error->text)};
}

void ScriptPlayer::takeLater(const Script::Step& step)
{
    const auto takeStep = [this, &step] {
        if (mHasFailed) {
            return;
        }
        if (const MaybeError error = take(step)) {
            mHasFailed = true;
            Q_EMIT failed(*error);
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
            noteEvent(step, ++mCalls[step.number]);
        }
    }
}

void ScriptPlayer::noteViews()
{
    for (const Script::Step& step : mPlan.steps) {
        const auto* const appId = step.after ? std::get_if<QString>(&step.after->what) : nullptr;
        if (appId == nullptr) {
            continue;
        }
        QSet<QString>& appeared = mAppearedViews[step.number];
        for (const View& view : mViews.views()) {
            if (view.appId == *appId && !appeared.contains(view.uuid)) {
                appeared.insert(view.uuid);
                noteEvent(step, appeared.size());
            }
        }
    }
}

void ScriptPlayer::noteEvent(const Script::Step& step, int times)
{
    if (times == step.after->times) {
        takeLater(step);
    }
}

MaybeError ScriptPlayer::execute(const Script::AddView& action)
{
    if (qAsConst(mViews).find(action.view.uuid) != nullptr) {
        return Error{QStringLiteral("there is a view \"%1\" already").arg(action.view.uuid)};
    }
    mViews.add(action.view, action.sortIndex);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::RemoveView& action)
{
    if (const MaybeError error = expectView(action.uuid)) {
        return error;
    }
    mViews.remove(action.uuid);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::ChangeView& action)
{
    if (const MaybeError error = expectView(action.uuid)) {
        return error;
    }
    mViews.change(action.uuid, action.change);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::OrderViews& action)
{
    for (const QString& uuid : action.uuids) {
        if (const MaybeError error = expectView(uuid)) {
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
    mScreenSaver.setAutomatic(action.isAutomatic);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::Call& action)
{
    const QDBusMessage reply =
        mGate.callOwnObject(mBusService.connection(), action.path, action.interface, action.member, action.arguments);
    if (reply.type() == QDBusMessage::ErrorMessage) {
        return Error{QStringLiteral("%1: %2").arg(reply.errorName(), reply.errorMessage())};
    }
    return {};
}

MaybeError ScriptPlayer::execute(const Script::SetScreenSaverActive& action)
{
    if (!action.isActive) {
        mScreenSaver.noteInput();
    } else if (!mScreenSaver.activate()) {
        return Error{QStringLiteral("the screen saver is disabled")};
    }
    return {};
}

MaybeError ScriptPlayer::execute(const Script::AddFault& action)
{
    mGate.faults().add(action.fault);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::EndFault& action)
{
    mGate.faults().remove(action.calls);
    return {};
}

MaybeError ScriptPlayer::execute(const Script::SetService& action)
{
    if (!action.isThere) {
        mBusService.giveNamesBack();
        return {};
    }
    if (const MaybeError error = mBusService.takeName()) {
        return error;
    }
    mBusService.takeNotificationName();
    return {};
}

MaybeError ScriptPlayer::execute(const Script::Freeze& action)
{
    QThread::msleep(static_cast<unsigned long>(action.milliseconds));
    return {};
}
