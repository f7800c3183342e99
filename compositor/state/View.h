// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QSize>
#include <QString>
#include <QVariantMap>

/// One view: a mapped toplevel window of an application, or a view that a script has added.
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
    /// Extra attributes from a script; they override the derived ones.
    QVariantMap attributes;
};
