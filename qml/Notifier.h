// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ServiceObject.h"

#include <TelvaroNotificationDBusConnector.h>

#include <QString>
#include <QStringList>

/// A desktop notification to be sent, any number of times.
class Notifier : public ServiceObject
{
    Q_OBJECT
    /// Name or path of an icon.
    Q_PROPERTY(QString icon MEMBER mIcon NOTIFY iconChanged)
    Q_PROPERTY(QString summary MEMBER mSummary NOTIFY summaryChanged)
    Q_PROPERTY(QString body MEMBER mBody NOTIFY bodyChanged)
    /// Identifier and label of each action in turn; an identifier is also read as the name of an icon.
    Q_PROPERTY(QStringList actions MEMBER mActions NOTIFY actionsChanged)

public:
    explicit Notifier(QObject* parent = nullptr);

    /// Posts a new notification that never expires; blocks until the service has answered. The service's refusal is
    /// not told.
    Q_INVOKABLE void send();

Q_SIGNALS:
    void iconChanged();
    void summaryChanged();
    void bodyChanged();
    void actionsChanged();

private:
    TelvaroNotificationDBusConnector mConnector;
    QString mIcon;
    QString mSummary;
    QString mBody;
    QStringList mActions;
};
