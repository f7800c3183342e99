// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/DeskCommands.h"

#include "shell/WindowStack.h"
#include "state/Output.h"
#include "state/ScreenSaver.h"
#include "state/ViewList.h"

#include <algorithm>

DeskCommands::DeskCommands(Output& output, ViewList& views, ScreenSaver& screenSaver, WindowStack& stack,
                           QObject* parent)
    : QObject(parent)
{
    // Desktops have no shortcuts of Ctrl+Alt and these keys, and applications hardly any.
    constexpr int cModifiers = Qt::CTRL | Qt::ALT;
    add(QStringLiteral("Menu and keys"), Qt::Key_F1, [this] {
        Q_EMIT menuRequested();
    });
    add(QStringLiteral("Next view"), Qt::ALT | Qt::Key_Tab, [this] {
        Q_EMIT switchRequested(1);
    });
    add(QStringLiteral("Previous view"), Qt::ALT | Qt::SHIFT | Qt::Key_Tab, [this] {
        Q_EMIT switchRequested(-1);
    });
    add(QStringLiteral("Next of the application"), cModifiers | Qt::Key_PageDown, [&views] {
        views.setCurrent(views.neighbour(1));
    });
    add(QStringLiteral("Previous of the application"), cModifiers | Qt::Key_PageUp, [&views] {
        views.setCurrent(views.neighbour(-1));
    });
    add(QStringLiteral("Close the view"), cModifiers | Qt::Key_W, [&views, &stack] {
        stack.close(views.current());
    });
    add(QStringLiteral("Turn the screen"), cModifiers | Qt::Key_R, [&output] {
        const QStringList all = Output::orientations();
        output.setOrientation(all.at((all.indexOf(output.orientation()) + 1) % all.size()));
    });
    add(QStringLiteral("Full screen"), cModifiers | Qt::Key_F, [&output] {
        output.setFullScreen(!output.isFullScreen());
    });
    add(QStringLiteral("On-screen keyboard"), cModifiers | Qt::Key_K, [this] {
        Q_EMIT keyboardRequested();
    });
    add(QStringLiteral("Take a screenshot"), cModifiers | Qt::Key_P, [this] {
        Q_EMIT screenShotRequested();
    });
    add(QStringLiteral("Blank the screen"), cModifiers | Qt::Key_B, [&screenSaver] {
        screenSaver.activate();
    });
}

void DeskCommands::add(const QString& label, int key, const std::function<void()>& execute)
{
    mCommands.append({label, QKeySequence(key), execute});
}

const DeskCommands::Command* DeskCommands::find(int key) const
{
    const auto found = std::find_if(mCommands.cbegin(), mCommands.cend(), [key](const Command& command) {
        return command.key == QKeySequence(key);
    });
    return found == mCommands.cend() ? nullptr : &*found;
}
