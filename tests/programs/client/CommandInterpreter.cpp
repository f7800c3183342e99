// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CommandInterpreter.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

CommandInterpreter::CommandInterpreter(QObject* parent)
    : QObject(parent)
    , mNotifier(STDIN_FILENO, QSocketNotifier::Read)
{
    connect(&mNotifier, &QSocketNotifier::activated, this, &CommandInterpreter::read);
}

void CommandInterpreter::read()
{
    char buffer[4096];
    const ssize_t length = ::read(STDIN_FILENO, buffer, sizeof(buffer));
    if (length <= 0) {
        QCoreApplication::quit();
        return;
    }
    mInput.append(buffer, static_cast<int>(length));
    for (int end = mInput.indexOf('\n'); end >= 0; end = mInput.indexOf('\n')) {
        const QString line = QString::fromUtf8(mInput.left(end));
        mInput.remove(0, end + 1);
        run(line);
    }
}

void CommandInterpreter::run(const QString& line)
{
    const QString command = line.section(QLatin1Char(' '), 0, 0);
    const QString argument = line.section(QLatin1Char(' '), 1, 1);
    const QString rest = line.section(QLatin1Char(' '), 2);
    TestWindow* const window = mWindows.value(argument.toInt());

    if (command == QLatin1String("open")) {
        open(argument, rest);
    } else if (command == QLatin1String("ping")) {
        std::puts("pong");
        std::fflush(stdout);
    } else if (command == QLatin1String("hang")) {
        std::puts("hanging");
        std::fflush(stdout);
        for (;;) {
            pause();
        }
    } else if (command == QLatin1String("crash")) {
        std::raise(SIGKILL);
    } else if (command == QLatin1String("quit")) {
        QCoreApplication::quit();
    } else if (window == nullptr) {
        std::fprintf(stderr, "telvaro-test-client: cannot do \"%s\"\n", qUtf8Printable(line));
        std::exit(EXIT_FAILURE);
    } else if (command == QLatin1String("title")) {
        window->setWindowTitle(rest);
        window->update();
    } else if (command == QLatin1String("close")) {
        window->close();
    } else if (command == QLatin1String("menu")) {
        window->openMenu();
    } else if (command == QLatin1String("combobox")) {
        window->openComboBox();
    } else if (command == QLatin1String("field")) {
        window->addTextField();
    } else if (command == QLatin1String("dialog")) {
        window->openDialog(rest);
    }
}

void CommandInterpreter::open(const QString& appId, const QString& title)
{
    QGuiApplication::setDesktopFileName(appId);
    const int number = ++mLastNumber;
    auto* const window = new TestWindow(number, title);
    mWindows.insert(number, window);
    window->show();
}
