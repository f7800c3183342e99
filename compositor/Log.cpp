// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Log.h"

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <cstdlib>

namespace {
bool isKnownNoise(const QString& message)
{
    // Qt Wayland Compositor announces by a warning, for every menu of every client, that it leaves the grab and the
    // end of popups to its user. Both are taken care of here.
    return message.contains(QLatin1String("QWaylandXdgPopupPrivate::xdg_popup_"));
}

void handleMessage(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtWarningMsg && isKnownNoise(message)) {
        return;
    }
    const QByteArray line = "telvaro-compositor: " + message.trimmed().toLocal8Bit() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
    if (type == QtFatalMsg) {
        std::_Exit(EXIT_FAILURE);
    }
}
} // namespace

void Log::install()
{
    qInstallMessageHandler(handleMessage);
}
