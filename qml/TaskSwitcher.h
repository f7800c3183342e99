// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroTaskSwitcher.h>

#include <QString>
#include <QVariantMap>

/// The views of the compositor's task switcher, and which of them is current.
class TaskSwitcher : public TelvaroTaskSwitcher
{
    Q_OBJECT
    Q_PROPERTY(bool available READ isAvailable NOTIFY statusChanged)
    /// The row of the current view, -1 where there is none.
    Q_PROPERTY(int currentIndex READ getCurrentIndex NOTIFY currentIndexChanged)

public:
    explicit TaskSwitcher(QObject* parent = nullptr);

    bool isAvailable() const;
    int getCurrentIndex() const;

    // Those of C++, without the reply, which QML cannot hold.

    Q_INVOKABLE void switchTo(const QString& uuid);
    Q_INVOKABLE void switchToView(const QString& appId, uint sortIndex = 0);
    Q_INVOKABLE void next();
    Q_INVOKABLE void previous();

Q_SIGNALS:
    void currentIndexChanged();
    void requestFailed(const QVariantMap& error);
};
