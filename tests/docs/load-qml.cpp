// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QUrl>

/// load-qml FILE: loads a QML program and shows its window. Exit status 1 if it cannot be loaded.
int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.load(QUrl::fromLocalFile(QGuiApplication::arguments().value(1)));
    if (engine.rootObjects().isEmpty()) {
        return 1;
    }
    // Quits from the event loop, after the objects have been completed and the window has been shown.
    QMetaObject::invokeMethod(&application, &QCoreApplication::quit, Qt::QueuedConnection);
    return QGuiApplication::exec();
}
