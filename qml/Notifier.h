// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroLiveObject.h>

#include <QString>
#include <QStringList>
#include <QVariantMap>

/// A desktop notification to be sent, any number of times.
class Notifier : public TelvaroLiveObject
{
    Q_OBJECT
    Q_PROPERTY(bool available READ isAvailable NOTIFY statusChanged)
    /// Name or path of an icon.
    Q_PROPERTY(QString icon MEMBER mIcon NOTIFY iconChanged)
    Q_PROPERTY(QString summary MEMBER mSummary NOTIFY summaryChanged)
    Q_PROPERTY(QString body MEMBER mBody NOTIFY bodyChanged)
    /// Identifier and label of each action in turn; an identifier is also read as the name of an icon.
    Q_PROPERTY(QStringList actions MEMBER mActions NOTIFY actionsChanged)

public:
    explicit Notifier(QObject* parent = nullptr);

    bool isAvailable() const;

    /// Posts a new notification that never expires.
    Q_INVOKABLE void send();

Q_SIGNALS:
    void iconChanged();
    void summaryChanged();
    void bodyChanged();
    void actionsChanged();
    /// The service posted it under this id.
    void sent(uint id);
    void requestFailed(const QVariantMap& error);

private:
    QString mIcon;
    QString mSummary;
    QString mBody;
    QStringList mActions;
};
