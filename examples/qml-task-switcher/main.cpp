// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QUrl>

#include <cstdlib>

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    // The appId of this program's view.
    QGuiApplication::setDesktopFileName(QStringLiteral("qml-task-switcher"));
    const QQmlApplicationEngine engine(QUrl(QStringLiteral("qrc:/main.qml")));
    // The engine has logged the reason.
    return engine.rootObjects().isEmpty() ? EXIT_FAILURE : QGuiApplication::exec();
}
