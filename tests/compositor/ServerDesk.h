// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ChildProcess.h"
#include "shell/Scene.h"
#include "shell/WindowStack.h"
#include "state/Output.h"
#include "state/ScreenSaver.h"
#include "state/ViewList.h"
#include "wayland/ClientPopup.h"
#include "wayland/ClientWindow.h"
#include "wayland/WaylandServer.h"

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

#include <chrono>
#include <functional>
#include <future>

/// The Wayland server and the windows of its clients in the test's own process, without input and without painting.
class ServerDesk
{
public:
    ServerDesk()
    {
        QObject::connect(&server, &WaylandServer::windowCreated, [this](ClientWindow* created) {
            stack.addWindow(created);
            windows.append(created);
        });
        server.start("wayland-test");
    }

    QString socketPath() const
    {
        return QString::fromLocal8Bit(qgetenv("XDG_RUNTIME_DIR") + "/" + server.socketName());
    }

    /// Runs a client's work in a thread of its own, and the server until it is done.
    static void serve(const std::function<void()>& work)
    {
        auto future = std::async(std::launch::async, work);
        while (future.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
        future.get();
    }

    Output output{QSize(400, 300)};
    ScreenSaver screenSaver{0};
    ViewList views;
    Scene scene{output, screenSaver};
    WindowStack stack{output, views, scene};
    QWindow window;
    WaylandServer server{output, window, views};
    QVector<QPointer<ClientWindow>> windows;
};

/// The main function of a test program with a ServerDesk.
#define SERVER_TEST_MAIN(Test)                                                                                         \
    int main(int argc, char** argv)                                                                                    \
    {                                                                                                                  \
        const QTemporaryDir runtimeDirectory;                                                                          \
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtimeDirectory.path()));                                        \
        qputenv("QT_QPA_PLATFORM", "offscreen");                                                                       \
        const QGuiApplication application(argc, argv);                                                                 \
        Test test;                                                                                                     \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }
