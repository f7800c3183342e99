// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "script/Script.h"

#include <QByteArray>
#include <QSize>
#include <QString>
#include <QStringList>

/// What the program is asked to do by its arguments.
class CommandLine
{
public:
    enum class Task
    {
        Run,
        ShowHelp,
        ShowVersion,
        Refuse
    };

    /// `arguments` are those after the program's name.
    explicit CommandLine(const QStringList& arguments);

    Task task() const
    {
        return mTask;
    }
    /// Why the arguments are refused.
    QString error() const
    {
        return mError;
    }

    QSize size() const
    {
        return mSize;
    }
    QByteArray socketName() const
    {
        return mSocketName;
    }
    int screenSaverTimeoutSeconds() const
    {
        return mScreenSaverTimeoutSeconds;
    }
    /// Empty where no script is given.
    const Script::Plan& script() const
    {
        return mScript;
    }
    bool isFullScreenWindow() const
    {
        return mFullScreenWindow;
    }

    static QString helpText();

private:
    void refuse(const QString& error);
    void setSize(const QString& text);
    void setSocketName(const QString& text);
    void setScreenSaverTimeout(const QString& text);
    void setScript(const QString& fileName);

    Task mTask = Task::Run;
    QString mError;
    QSize mSize{1024, 600};
    QByteArray mSocketName;
    int mScreenSaverTimeoutSeconds = 300;
    bool mFullScreenWindow = false;
    Script::Plan mScript;
};
