// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QImage>
#include <QString>
#include <QVector>

/// One notification, as it is shown.
struct Notification
{
    struct Action
    {
        QString key;
        QString label;
        /// Shown instead of the label when there is one.
        QImage icon;
    };

    /// The key of the action that a click on the card itself stands for; it gets no button.
    static QString defaultActionKey();
    bool hasDefaultAction() const;

    quint32 id = 0;
    QString summary;
    QString body;
    QImage icon;
    QVector<Action> actions;
    /// Stays when one of its actions is chosen.
    bool isResident = false;
    bool isCritical = false;
    /// 0 is never.
    int timeoutMilliseconds = 0;
};
