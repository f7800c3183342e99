// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LibDBus.h"
#include "ServiceNames.h"

#include <QCoreApplication>
#include <QObject>
#include <QThread>

#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

void check(bool succeeded)
{
    if (!succeeded) {
        throw std::runtime_error("the operation has failed");
    }
}

/// What a message costs that leaves its thread: a byte over a socket to another one and back.
class SocketRoundTrip
{
public:
    SocketRoundTrip()
    {
        check(socketpair(AF_UNIX, SOCK_STREAM, 0, mEnds) == 0);
        mEcho = std::thread([end = mEnds[1]] {
            char byte = 0;
            while (read(end, &byte, 1) == 1 && write(end, &byte, 1) == 1) { }
        });
    }

    ~SocketRoundTrip()
    {
        shutdown(mEnds[0], SHUT_RDWR);
        mEcho.join();
        close(mEnds[0]);
        close(mEnds[1]);
    }

    SocketRoundTrip(const SocketRoundTrip&) = delete;
    SocketRoundTrip& operator=(const SocketRoundTrip&) = delete;

    void operator()() const
    {
        char byte = 1;
        check(write(mEnds[0], &byte, 1) == 1 && read(mEnds[0], &byte, 1) == 1);
    }

private:
    int mEnds[2] = {-1, -1};
    std::thread mEcho;
};

/// What a message costs that goes through the bus daemon to the service and back, carrying nothing.
class LibDBusRoundTrip
{
public:
    LibDBusRoundTrip()
        : mConnection(connectToBus())
    {
    }

    void operator()() const
    {
        const DBusMessagePointer call(dbus_message_new_method_call(ServiceNames::cService, ServiceNames::cOverlayPath,
                                                                   ServiceNames::cOverlayInterface, "Hide"));
        LibDBusError error;
        const DBusMessagePointer reply(dbus_connection_send_with_reply_and_block(
            mConnection.get(), call.get(), DBUS_TIMEOUT_USE_DEFAULT, error.get()));
        error.check();
    }

private:
    DBusConnectionPointer mConnection;
};

/// What QtDBus adds to every call: it gives the message to a thread of its own and waits until that has answered.
class ThreadHop
{
public:
    ThreadHop()
    {
        mTarget.moveToThread(&mThread);
        mThread.start();
    }

    ~ThreadHop()
    {
        mThread.quit();
        mThread.wait();
    }

    ThreadHop(const ThreadHop&) = delete;
    ThreadHop& operator=(const ThreadHop&) = delete;

    void operator()()
    {
        QMetaObject::invokeMethod(
            &mTarget, [] {}, Qt::BlockingQueuedConnection);
    }

private:
    QThread mThread;
    QObject mTarget;
};

} // namespace

// Below what no client can go: prints the nanoseconds of `NAME COUNT` on standard input, until its end.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    try {
        const SocketRoundTrip socketRoundTrip;
        const LibDBusRoundTrip libDBusRoundTrip;
        ThreadHop threadHop;
        const std::map<std::string, std::function<void()>> floors = {
            {"socket", std::cref(socketRoundTrip)},
            {"libdbus", std::cref(libDBusRoundTrip)},
            {"thread-hop", std::ref(threadHop)},
        };

        std::cout << "ready" << std::endl;
        std::string name;
        long count = 0;
        while (std::cin >> name >> count) {
            const std::function<void()>& floor = floors.at(name);
            const auto start = std::chrono::steady_clock::now();
            for (long i = 0; i < count; ++i) {
                floor();
            }
            std::cout << std::chrono::nanoseconds(std::chrono::steady_clock::now() - start).count() << std::endl;
        }
    } catch (const std::exception& error) {
        std::cerr << "floor: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
