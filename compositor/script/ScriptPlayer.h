// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"
#include "script/Script.h"

#include "shell/InputInjector.h"

#include <QHash>
#include <QObject>
#include <QSet>

#include <functional>

#include <sys/types.h>

class BusService;
class CallGate;
class Keymap;
class ScreenSaver;
class ViewList;

/// Plays a script: takes each step when its time or its event has come.
class ScriptPlayer : public QObject
{
    Q_OBJECT

public:
    /// What the steps act on.
    struct Stage
    {
        ViewList& views;
        ScreenSaver& screenSaver;
        CallGate& gate;
        BusService& busService;
        InputInjector& injector;
        const Keymap& keymap;
        /// Stop and start the Wayland server.
        std::function<void()> stopServer;
        std::function<MaybeError()> startServer;
    };
    /// Receives why a step could not be taken, or nothing when it has been.
    using Done = InputInjector::Done;

    ScriptPlayer(Script::Plan plan, Stage stage, QObject* parent = nullptr);
    /// Lets the processes run on that a step has stopped.
    ~ScriptPlayer() override;

    /// Takes the steps that are due at once and schedules the others. Returns why one of the first cannot be taken.
    MaybeError start();

    /// Takes a single step at once, which is given as JSON.
    void takeStep(const QByteArray& json, const Done& done);

Q_SIGNALS:
    /// A later step cannot be taken; no further step is.
    void failed(const Error& error);
    /// A step ends the program.
    void ended(int status);

private:
    /// Returns an error if there is no such view.
    MaybeError expectView(const QString& uuid) const;
    void take(const Script::Step& step);
    void takeLater(const Script::Step& step);
    void fail(const Script::Step& step, const Error& error);
    void noteCall(const BusCall& call);
    void noteViews();
    void noteView(const Script::Step& step, const Script::ViewPattern& pattern);
    void noteEvent(const Script::Step& step);
    void resume(pid_t process);

    void perform(const Script::Action& action, const Done& done);
    template <typename Action> void perform(const Action& action, const Done& done)
    {
        done(execute(action));
    }
    void perform(const Script::Input& action, const Done& done);
    void perform(const Script::Restart& action, const Done& done);

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
    MaybeError execute(const Script::Hang& action);
    MaybeError execute(const Script::End& action);

    const Script::Plan mPlan;
    const Stage mStage;
    ViewList& mViews;
    /// The views that steps have added.
    QSet<QString> mOwnViews;
    /// The events counted for a waiting step, by its number.
    QHash<int, int> mCounts;
    /// The views that have matched the pattern of a waiting step at last, by its number.
    QHash<int, QSet<QString>> mMatches;
    QSet<pid_t> mStoppedProcesses;
    bool mIsStarting = false;
    bool mIsRestarting = false;
    MaybeError mError;
};
