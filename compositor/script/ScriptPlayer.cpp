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

bool ScriptPlayer::start()
{
    for (const Script::Step& step : mPlan.steps) {
        if (step.after) {
            continue;
        }
        if (step.delayMilliseconds > 0) {
            takeLater(step);
        } else if (mError.isEmpty()) {
            take(step);
        }
    }
    return mError.isEmpty();
}

void ScriptPlayer::take(const Script::Step& step)
{
    std::visit(
        [this](const auto& action) {
            execute(action);
        },
        step.action);
    if (!mError.isEmpty()) {
        mError = QStringLiteral("%1: step %2: %3").arg(mPlan.fileName, QString::number(step.number), mError);
    }
}

void ScriptPlayer::takeLater(const Script::Step& step)
{
    const auto takeStep = [this, &step] {
        if (!mError.isEmpty()) {
            return;
        }
        take(step);
        if (!mError.isEmpty()) {
            Q_EMIT failed();
        }
    };
    if (step.delayMilliseconds > 0) {
        QTimer::singleShot(step.delayMilliseconds, Qt::PreciseTimer, this, takeStep);
    } else {
        // Before the next call of a program that has waited for the answer to this one.
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

void ScriptPlayer::execute(const Script::AddView& action)
{
    if (qAsConst(mViews).find(action.view.uuid) != nullptr) {
        mError = QStringLiteral("there is a view \"%1\" already").arg(action.view.uuid);
        return;
    }
    mViews.add(action.view);
}

void ScriptPlayer::execute(const Script::RemoveView& action)
{
    if (qAsConst(mViews).find(action.uuid) == nullptr) {
        mError = QStringLiteral("there is no view \"%1\"").arg(action.uuid);
        return;
    }
    mViews.remove(action.uuid);
}

void ScriptPlayer::execute(const Script::Call& action)
{
    const QDBusMessage reply =
        mGate.callOwnObject(mBusService.connection(), action.path, action.interface, action.member, action.arguments);
    if (reply.type() == QDBusMessage::ErrorMessage) {
        mError = QStringLiteral("%1: %2").arg(reply.errorName(), reply.errorMessage());
    }
}

void ScriptPlayer::execute(const Script::SetScreenSaverActive& action)
{
    if (!action.isActive) {
        mScreenSaver.noteInput();
    } else if (!mScreenSaver.activate()) {
        mError = QStringLiteral("the screen saver is disabled");
    }
}

void ScriptPlayer::execute(const Script::AddFault& action)
{
    mGate.faults().add(action.fault);
}

void ScriptPlayer::execute(const Script::EndFault& action)
{
    mGate.faults().remove(action.calls);
}

void ScriptPlayer::execute(const Script::SetService& action)
{
    if (!action.isThere) {
        mBusService.giveNamesBack();
    } else if (mBusService.takeName()) {
        mBusService.takeNotificationName();
    } else {
        mError = mBusService.error();
    }
}

void ScriptPlayer::execute(const Script::Freeze& action)
{
    QThread::msleep(static_cast<unsigned long>(action.milliseconds));
}
