// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QUrl>

#include <cstdlib>

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    // The application id of this program's own view.
    QGuiApplication::setDesktopFileName(QStringLiteral("qml-task-switcher"));
    const QQmlApplicationEngine engine(QUrl(QStringLiteral("qrc:/main.qml")));
    // The engine has said why.
    return engine.rootObjects().isEmpty() ? EXIT_FAILURE : QGuiApplication::exec();
}
