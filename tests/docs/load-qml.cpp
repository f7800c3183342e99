// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QUrl>

#include <cstdlib>

/// load-qml FILE: loads a QML program and shows its window. Exit status 1 if it cannot be loaded.
int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    int status = 1;
    {
        QQmlApplicationEngine engine;
        engine.load(QUrl::fromLocalFile(QGuiApplication::arguments().value(1)));
        if (!engine.rootObjects().isEmpty()) {
            // Quits from the event loop, after the objects have been completed and the window has been shown.
            QMetaObject::invokeMethod(&application, &QCoreApplication::quit, Qt::QueuedConnection);
            status = QGuiApplication::exec();
        }
    }
    // Without the end of Qt's Wayland platform: its threads may wait for each other when events come just then.
    std::quick_exit(status);
}
