// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QSize>
#include <QString>
#include <QVariantMap>

/// One view: what an application shows in one window, or what a script says of one.
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
    /// Told in addition to those that are made of the above, or instead of them.
    QVariantMap attributes;
};
