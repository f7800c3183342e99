// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "script/Script.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>

class BusService;
class CallGate;
class ScreenSaver;
class ViewList;

/// Does what a script says, when it says so.
class ScriptPlayer : public QObject
{
    Q_OBJECT

public:
    ScriptPlayer(Script::Plan plan, ViewList& views, ScreenSaver& screenSaver, CallGate& gate, BusService& busService,
                 QObject* parent = nullptr);

    /// Takes the steps that are due at once, and all others from then on. False, with a reason in error(), when one
    /// of the first cannot be taken.
    bool start();
    QString error() const
    {
        return mError;
    }

Q_SIGNALS:
    /// A later step cannot be taken.
    void failed();

private:
    void take(const Script::Step& step);
    void takeLater(const Script::Step& step);
    void noteCall(const BusCall& call);
    void noteViews();
    void noteEvent(const Script::Step& step, int times);

    void execute(const Script::AddView& action);
    void execute(const Script::RemoveView& action);
    void execute(const Script::Call& action);
    void execute(const Script::SetScreenSaverActive& action);
    void execute(const Script::AddFault& action);
    void execute(const Script::EndFault& action);
    void execute(const Script::SetService& action);
    void execute(const Script::Freeze& action);

    const Script::Plan mPlan;
    ViewList& mViews;
    ScreenSaver& mScreenSaver;
    CallGate& mGate;
    BusService& mBusService;
    /// By the number of the step that waits for them.
    QHash<int, int> mCalls;
    QHash<int, QSet<QString>> mAppearedViews;
    QString mError;
};
