// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "applications/Application.h"

#include <QAbstractEventDispatcher>
#include <QModelIndex>

#include <valgrind/callgrind.h>

#include <unistd.h>

#include <chrono>
#include <iostream>
#include <string>

namespace {

long long now()
{
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

Application::Application(int& argc, char** argv)
    : QCoreApplication(argc, argv)
    , mStart(now())
    , mViewCount(arguments().at(1).toInt())
    , mCommands(STDIN_FILENO, QSocketNotifier::Read)
{
}

int Application::show(const QAbstractItemModel& model, const std::function<void()>& step)
{
    mModel = &model;
    const QHash<int, QByteArray> names = model.roleNames();
    mTitleRole = names.key("title");
    mStateRole = names.key("info3");
    mCurrentRole = names.key("current");
    connect(&model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex& /*parent*/, int first, int last) {
                insertRows(first, last);
            });
    connect(&model, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex& first, const QModelIndex& last) {
        readRows(first.row(), last.row());
    });
    connect(&mCommands, &QSocketNotifier::activated, this, [this, step] {
        carryOutCommand(step);
    });
    connect(eventDispatcher(), &QAbstractEventDispatcher::aboutToBlock, this, &Application::report);
    if (model.rowCount() > 0) {
        insertRows(0, model.rowCount() - 1);
    }
    return exec();
}

bool Application::notify(QObject* receiver, QEvent* event)
{
    if (mHandlerDepth++ == 0) {
        mHandlerStart = now();
    }
    const bool isHandled = QCoreApplication::notify(receiver, event);
    if (--mHandlerDepth == 0) {
        mHeld += now() - mHandlerStart;
    }
    return isHandled;
}

void Application::insertRows(int first, int last)
{
    for (int row = first; row <= last; ++row) {
        mRows.insert(mRows.begin() + row, Row());
    }
    readRows(first, last);
}

void Application::readRows(int first, int last)
{
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = mModel->index(row, 0);
        const Row read = {index.data(mTitleRole).toString(),
                          index.data(mStateRole).toString() == QLatin1String("current"),
                          index.data(mCurrentRole).toBool()};
        Row& shown = mRows[static_cast<std::size_t>(row)];
        if (read.title != shown.title) {
            ++mTitleChanges;
        }
        if (read.isCurrent && read.isCurrentInList) {
            mCurrentRow = row;
        }
        shown = read;
    }
    checkShown();
}

void Application::checkShown()
{
    const bool isStarted = static_cast<int>(mRows.size()) == mViewCount && mCurrentRow >= 0;
    if ((mAwaited == Awaited::Start && isStarted)
        || (mAwaited == Awaited::Title && mTitleChanges != mFormerTitleChanges)
        || (mAwaited == Awaited::Switch && mCurrentRow != mFormerCurrentRow)) {
        mShown = mAwaited == Awaited::Start ? now() - mStart : now();
        mAwaited = Awaited::Nothing;
    }
}

void Application::carryOutCommand(const std::function<void()>& step)
{
    // The next command is not sent before the reply to this one, so that a read returns exactly one line.
    char buffer[64];
    const ssize_t size = read(STDIN_FILENO, buffer, sizeof buffer);
    if (size <= 0) {
        quit();
        return;
    }
    const std::string command(buffer, static_cast<std::size_t>(size));
    if (command == "step\n") {
        await(Awaited::Switch);
        const long long before = now();
        step();
        std::cout << before << ' ' << now() - before << ' ';
    } else {
        await(command == "await-title\n" ? Awaited::Title : Awaited::Switch);
        std::cout << "ready" << std::endl;
        // The reader of that line may have taken the processor meanwhile.
        mHandlerStart = now();
    }
}

void Application::await(Awaited what)
{
    mAwaited = what;
    mFormerTitleChanges = mTitleChanges;
    mFormerCurrentRow = mCurrentRow;
    mHeld = 0;
    mHandlerStart = now();
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
}

void Application::report()
{
    if (mShown != 0) {
        CALLGRIND_DUMP_STATS;
        std::cout << mShown << ' ' << mHeld << std::endl;
        mShown = 0;
    }
}
