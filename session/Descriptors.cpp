// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Descriptors.h"

#include <QDir>

#include <unistd.h>

void closeInheritedDescriptors()
{
    const QStringList descriptors = QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System);
    for (const QString& descriptor : descriptors) {
        if (descriptor.toInt() > STDERR_FILENO) {
            ::close(descriptor.toInt());
        }
    }
}
