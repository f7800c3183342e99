// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QJsonObject>
#include <QString>
#include <QVector>

#include <optional>

/// What the service shows on the bus.
struct ServiceState
{
    bool isThere = true;
    /// As "add-view" of a script has them.
    QVector<QJsonObject> views;
    /// Not known if there is none.
    std::optional<QString> currentView;
    /// The properties that are known, by their names.
    QJsonObject screen;

    /// Returns the steps of a script that lead from this state to `next`.
    QVector<QJsonObject> stepsTo(const ServiceState& next) const;

private:
    const QJsonObject* find(const QString& uuid) const;
    QVector<QJsonObject> viewStepsTo(const ServiceState& next) const;
    QVector<QJsonObject> screenStepsTo(const ServiceState& next) const;
};
