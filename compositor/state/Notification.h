// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QImage>
#include <QString>
#include <QVector>

#include <optional>

/// One notification, sanitized and ready to be painted.
struct Notification
{
    struct Action
    {
        QString key;
        QString label;
        /// Painted instead of the label; may be null.
        QImage icon;
    };

    /// The key of the action that a click on the card outside its buttons triggers; it has no button.
    static QString defaultActionKey();
    bool hasDefaultAction() const;

    quint32 id = 0;
    QString summary;
    QString body;
    QImage icon;
    QVector<Action> actions;
    /// Is not closed when one of its actions is chosen.
    bool isResident = false;
    bool isCritical = false;
    /// In percent.
    std::optional<int> progress;
    /// 0 is never.
    int timeoutMilliseconds = 0;
};
