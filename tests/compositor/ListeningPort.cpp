// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ListeningPort.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <stdexcept>

namespace {

/// The sockets that the process has, by their inodes.
QSet<QString> socketsOf(const QString& process)
{
    QSet<QString> inodes;
    const QDir directory(process + QStringLiteral("/fd"));
    const QStringList names = directory.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        const QString target = QFileInfo(directory.filePath(name)).symLinkTarget().section(QLatin1Char('/'), -1);
        if (target.startsWith(QLatin1String("socket:["))) {
            inodes.insert(target.mid(8).chopped(1));
        }
    }
    return inodes;
}

} // namespace

quint16 listeningPort(qint64 processId, const QString& protocol)
{
    const QString process = QStringLiteral("/proc/%1").arg(processId);
    const QSet<QString> inodes = socketsOf(process);
    for (const QString& table : {protocol, protocol + QLatin1Char('6')}) {
        QFile file(QStringLiteral("%1/net/%2").arg(process, table));
        if (!file.open(QIODevice::ReadOnly)) {
            continue;
        }
        const QStringList lines = QString::fromLatin1(file.readAll()).split(QLatin1Char('\n'));
        for (const QString& line : lines) {
            // sl, local_address, rem_address, st, queues, tr, retrnsmt, uid, timeout, inode
            const QStringList fields = line.simplified().split(QLatin1Char(' '));
            if (inodes.contains(fields.value(9))) {
                return static_cast<quint16>(fields.at(1).section(QLatin1Char(':'), 1).toUInt(nullptr, 16));
            }
        }
    }
    throw std::runtime_error("the program listens on no port");
}
