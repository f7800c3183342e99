// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QSize>
#include <QString>

/// One view: what an application shows in one window.
struct View
{
    QString uuid;
    QString appId;
    QString title;
    QString processName;
    quint32 pid = 0;
    /// Position among the views of the same application.
    quint32 sortIndex = 0;
    QSize size;
    bool isDialog = false;
    bool isResponding = true;
};
