// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ProcessMemory.h"

#include "Sanitized.h"

#include <QByteArray>
#include <QFile>

#include <malloc.h>

#include <stdexcept>

namespace {

qint64 statusValue(const QByteArray& name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith(name + ':')) {
                return line.mid(name.size() + 1).replace("kB", "").trimmed().toLongLong();
            }
        }
    }
    throw std::runtime_error("/proc/self/status does not tell " + name.toStdString());
}

} // namespace

bool ProcessMemory::isMeaningful()
{
#if defined(TELVARO_SANITIZED) || defined(TELVARO_EMULATED)
    return false;
#else
    return !qEnvironmentVariableIsSet("TELVARO_UNDER_VALGRIND");
#endif
}

qint64 ProcessMemory::resident()
{
    malloc_trim(0);
    return statusValue("VmRSS");
}

qint64 ProcessMemory::peak()
{
    return statusValue("VmHWM");
}

void ProcessMemory::resetPeak()
{
    const QByteArray peakOnly = "5";
    QFile references(QStringLiteral("/proc/self/clear_refs"));
    if (!references.open(QIODevice::WriteOnly) || references.write(peakOnly) != peakOnly.size()) {
        throw std::runtime_error("/proc/self/clear_refs cannot be written");
    }
}
