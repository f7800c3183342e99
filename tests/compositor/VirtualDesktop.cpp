// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "VirtualDesktop.h"

#include <stdexcept>

VirtualDesktop::VirtualDesktop()
{
    mServer.setProcessChannelMode(QProcess::SeparateChannels);
    mServer.setStandardErrorFile(QProcess::nullDevice());
    mServer.run(QStringLiteral("Xvfb"),
                {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"), QStringLiteral("0"),
                 QStringLiteral("1024x600x24"), QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                 QStringLiteral("-noreset")});
    mDisplay = QLatin1Char(':') + QString::fromLatin1(mServer.readOutputLine());
}

void VirtualDesktop::setKeyboardLayout(const QStringList& layoutAndVariant)
{
    ChildProcess process;
    process.run(QStringLiteral("setxkbmap"), QStringList{QStringLiteral("-display"), mDisplay} + layoutAndVariant);
    if (!process.waitForFinished(ChildProcess::cDeadline) || process.exitCode() != 0) {
        throw std::runtime_error("cannot set the keyboard layout");
    }
}

void VirtualDesktop::movePointer(int x, int y)
{
    type({QStringLiteral("mousemove"), QString::number(x), QString::number(y)});
}

void VirtualDesktop::click(int button)
{
    type({QStringLiteral("click"), QString::number(button)});
}

void VirtualDesktop::press(int button)
{
    type({QStringLiteral("mousedown"), QString::number(button)});
}

void VirtualDesktop::release(int button)
{
    type({QStringLiteral("mouseup"), QString::number(button)});
}

void VirtualDesktop::key(const QString& name)
{
    type({QStringLiteral("key"), name});
}

void VirtualDesktop::keyDown(const QString& name)
{
    type({QStringLiteral("keydown"), name});
}

void VirtualDesktop::keyUp(const QString& name)
{
    type({QStringLiteral("keyup"), name});
}

void VirtualDesktop::type(const QStringList& arguments)
{
    ChildProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), mDisplay);
    program.setProcessEnvironment(environment);
    program.run(QStringLiteral("xdotool"), arguments);
    if (!program.waitForFinished(ChildProcess::cDeadline) || program.exitCode() != 0) {
        throw std::runtime_error("xdotool " + arguments.join(QLatin1Char(' ')).toStdString() + " failed");
    }
}
