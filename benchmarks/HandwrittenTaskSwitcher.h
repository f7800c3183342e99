// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ViewRecord.h"

#include <QDBusInterface>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

/// The task switcher as an application would follow and use it that talks to QtDBus itself.
class HandwrittenTaskSwitcher : public QObject
{
    Q_OBJECT

public:
    HandwrittenTaskSwitcher();

    ViewRecordList views();
    ViewRecord currentView();
    bool setCurrentView(const ViewRecord& view);
    bool stepToNextView();

Q_SIGNALS:
    void currentViewChanged(const QString& uuid);

private Q_SLOTS:
    void onPropertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated);

private:
    QDBusInterface mProperties;
};
