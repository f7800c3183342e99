// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QKeySequence>
#include <QObject>
#include <QString>
#include <QVector>

#include <functional>

class Output;
class ScreenSaver;
class ViewList;
class WindowStack;

/// What a person at the output can do with it, by a key or from the menu.
class DeskCommands : public QObject
{
    Q_OBJECT

public:
    struct Command
    {
        QString label;
        QKeySequence key;
        std::function<void()> execute;
    };

    DeskCommands(Output& output, ViewList& views, ScreenSaver& screenSaver, WindowStack& stack,
                 QObject* parent = nullptr);

    const QVector<Command>& commands() const
    {
        return mCommands;
    }
    /// Returns the command of a key with its modifiers, as in QKeySequence; null where there is none.
    const Command* find(int key) const;

Q_SIGNALS:
    void menuRequested();
    /// 1 for the next view, -1 for the previous one, in the order of their use.
    void switchRequested(int step);
    void keyboardRequested();
    void screenShotRequested();

private:
    void add(const QString& label, int key, const std::function<void()>& execute);

    QVector<Command> mCommands;
};
