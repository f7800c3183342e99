// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"
#include "script/Script.h"

#include <QHash>
#include <QObject>
#include <QSet>

class BusService;
class CallGate;
class ScreenSaver;
class ViewList;

/// Plays a script: takes each step when its time or its event has come.
class ScriptPlayer : public QObject
{
    Q_OBJECT

public:
    ScriptPlayer(Script::Plan plan, ViewList& views, ScreenSaver& screenSaver, CallGate& gate, BusService& busService,
                 QObject* parent = nullptr);

    /// Takes the steps that are due at once and schedules the others. Returns why one of the first cannot be taken.
    MaybeError start();

Q_SIGNALS:
    /// A later step cannot be taken; no further step is.
    void failed(const Error& error);

private:
    /// Returns an error if there is no such view.
    MaybeError expectView(const QString& uuid) const;
    MaybeError take(const Script::Step& step);
    void takeLater(const Script::Step& step);
    void noteCall(const BusCall& call);
    void noteViews();
    void noteEvent(const Script::Step& step, int times);

    MaybeError execute(const Script::AddView& action);
    MaybeError execute(const Script::RemoveView& action);
    MaybeError execute(const Script::ChangeView& action);
    MaybeError execute(const Script::OrderViews& action);
    MaybeError execute(const Script::AnnounceCurrentView& action);
    MaybeError execute(const Script::SetBlanking& action);
    MaybeError execute(const Script::Call& action);
    MaybeError execute(const Script::SetScreenSaverActive& action);
    MaybeError execute(const Script::AddFault& action);
    MaybeError execute(const Script::EndFault& action);
    MaybeError execute(const Script::SetService& action);
    MaybeError execute(const Script::Freeze& action);

    const Script::Plan mPlan;
    ViewList& mViews;
    ScreenSaver& mScreenSaver;
    CallGate& mGate;
    BusService& mBusService;
    /// What has been counted for a waiting step, by its number.
    QHash<int, int> mCalls;
    QHash<int, QSet<QString>> mAppearedViews;
    bool mHasFailed = false;
};
