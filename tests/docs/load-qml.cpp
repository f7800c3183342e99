// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QUrl>

/// load-qml FILE: whether a QML program can be loaded and shows itself.
int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.load(QUrl::fromLocalFile(QGuiApplication::arguments().value(1)));
    if (engine.rootObjects().isEmpty()) {
        return 1;
    }
    // As far as it goes by itself: objects are complete, the window has been shown.
    QMetaObject::invokeMethod(&application, &QCoreApplication::quit, Qt::QueuedConnection);
    return QGuiApplication::exec();
}
