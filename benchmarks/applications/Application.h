// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QAbstractItemModel>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <QString>

#include <functional>
#include <vector>

/// A user interface without a screen: reads every changed row of a model, as a list on the screen does, and measures
/// when the model shows what it waits for.
///
/// Prints the nanoseconds from its construction until the list stands, and then carries out the commands on standard
/// input until its end:
/// - `await-title` and `await-switch` print "ready", and then, once a title or both the current view and its state in
///   the list have changed, the time on the monotonic clock and the nanoseconds that handlers held the event loop;
/// - `step` steps to the next view, and prints the same, preceded by the time before the call and its nanoseconds.
/// Under callgrind the instructions until the event loop is idle again are dumped for each command.
class Application : public QCoreApplication
{
public:
    /// The first argument is the number of views.
    Application(int& argc, char** argv);

    /// Shows the model until standard input ends. Returns the process's exit status.
    int show(const QAbstractItemModel& model, const std::function<void()>& step);

    bool notify(QObject* receiver, QEvent* event) override;

private:
    struct Row
    {
        QString title;
        /// Whether the list's record names the view the current one.
        bool isCurrentInList = false;
        /// Whether the view is the current one.
        bool isCurrent = false;
    };

    enum class Awaited
    {
        Start,
        Title,
        Switch,
        Nothing
    };

    void insertRows(int first, int last);
    void readRows(int first, int last);
    void checkShown();
    void carryOutCommand(const std::function<void()>& step);
    void await(Awaited what);
    void report();

    const long long mStart;
    const int mViewCount;
    QSocketNotifier mCommands;
    const QAbstractItemModel* mModel = nullptr;
    int mTitleRole = -1;
    int mStateRole = -1;
    int mCurrentRole = -1;
    std::vector<Row> mRows;
    int mTitleChanges = 0;
    int mCurrentRow = -1;

    Awaited mAwaited = Awaited::Start;
    int mFormerTitleChanges = 0;
    int mFormerCurrentRow = -1;
    long long mShown = 0;
    long long mHeld = 0;
    long long mHandlerStart = 0;
    int mHandlerDepth = 0;
};
