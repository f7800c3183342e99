// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroTaskSwitcherDBusConnector.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void ignore(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/)
{
}

/// An application without a bus, whose "pidof" prints the given file.
struct Application
{
    Application()
    {
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
        qputenv("PATH", directory.path().toLocal8Bit() + ':' + qgetenv("PATH"));
        qInstallMessageHandler(ignore);
        if (!QFile::link(QStringLiteral("/bin/cat"), directory.filePath(QStringLiteral("pidof")))) {
            std::abort();
        }
    }

    int argumentCount = 1;
    char name[5] = "fuzz";
    char* arguments[2] = {name, nullptr};
    QTemporaryDir directory;
    QCoreApplication application{argumentCount, arguments};
};

} // namespace

// Parses any output of "pidof".
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Application cApplication;
    static const TelvaroTaskSwitcherDBusConnector cConnector;
    const QByteArray output(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QFile file(cApplication.directory.filePath(QStringLiteral("output")));
    if (!file.open(QIODevice::WriteOnly) || file.write(output) != output.size()) {
        std::abort();
    }
    file.close();
    const uint32_t pid = cConnector.processNameToPid(file.fileName());
    // One number is returned, anything else is 0.
    bool isNumber = false;
    const int expected = QString::fromLocal8Bit(output.constData(), output.size()).trimmed().toInt(&isNumber);
    if (pid != static_cast<uint32_t>(isNumber ? expected : 0)) {
        std::abort();
    }
    return 0;
}
