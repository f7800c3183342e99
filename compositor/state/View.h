// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QSize>
#include <QString>
#include <QVariantMap>

#include <array>
#include <optional>

/// What a script gives exactly of a view's record on the bus, instead of the derived values.
struct ExactRecord
{
    std::array<std::optional<QString>, 4> infos;
    std::optional<QVariantMap> attributes;
};

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
    ExactRecord record;
};

/// What changes of a view.
struct ViewChange
{
    void applyTo(View& view) const;

    std::optional<QString> appId;
    std::optional<QString> title;
    std::optional<QString> processName;
    std::optional<quint32> pid;
    std::optional<quint32> sortIndex;
    std::optional<QVariantMap> attributes;
    ExactRecord record;
};
