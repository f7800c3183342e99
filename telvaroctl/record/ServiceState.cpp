// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ServiceState.h"

#include <TelvaroDBusDefinitions.h>

#include <QJsonArray>
#include <QStringList>

#include <algorithm>

namespace {

const QString cUuid = QStringLiteral("uuid");
const QString cRecord = QStringLiteral("record");
const QString cActive = QStringLiteral("screenSaverActive");

QString uuidOf(const QJsonObject& view)
{
    return view.value(cUuid).toString();
}

QStringList uuidsOf(const QVector<QJsonObject>& views)
{
    QStringList uuids;
    for (const QJsonObject& view : views) {
        uuids.append(uuidOf(view));
    }
    return uuids;
}

QJsonObject set(const QString& interface, const QString& property, const QJsonValue& value)
{
    return {{QStringLiteral("set"), QJsonObject{{interface + QLatin1Char('.') + property, value}}}};
}

/// Returns the members of `next` that differ.
QJsonObject difference(const QJsonObject& before, const QJsonObject& next)
{
    QJsonObject changed;
    for (auto member = next.begin(); member != next.end(); ++member) {
        if (before.value(member.key()) != member.value()) {
            changed.insert(member.key(), member.value());
        }
    }
    return changed;
}

QJsonObject changeOfView(const QJsonObject& before, const QJsonObject& next)
{
    QJsonObject change = difference(before, next);
    if (change.contains(cRecord)) {
        change.insert(cRecord, difference(before.value(cRecord).toObject(), next.value(cRecord).toObject()));
    }
    return change;
}

} // namespace

const QJsonObject* ServiceState::find(const QString& uuid) const
{
    const auto found = std::find_if(views.cbegin(), views.cend(), [&uuid](const QJsonObject& view) {
        return uuidOf(view) == uuid;
    });
    return found == views.cend() ? nullptr : &*found;
}

QVector<QJsonObject> ServiceState::stepsTo(const ServiceState& next) const
{
    QVector<QJsonObject> steps = viewStepsTo(next) + screenStepsTo(next);
    if (isThere != next.isThere) {
        steps.append({{QStringLiteral("service"), next.isThere ? QStringLiteral("back") : QStringLiteral("gone")}});
    }
    return steps;
}

QVector<QJsonObject> ServiceState::viewStepsTo(const ServiceState& next) const
{
    QVector<QJsonObject> steps;
    QStringList uuids;
    for (const QJsonObject& view : views) {
        if (next.find(uuidOf(view)) == nullptr) {
            steps.append({{QStringLiteral("remove-view"), uuidOf(view)}});
        } else {
            uuids.append(uuidOf(view));
        }
    }
    for (const QJsonObject& view : next.views) {
        if (find(uuidOf(view)) == nullptr) {
            steps.append({{QStringLiteral("add-view"), view}});
            uuids.append(uuidOf(view));
        }
    }
    const bool hasOtherViews = !steps.isEmpty();
    for (const QJsonObject& view : next.views) {
        const QJsonObject* const before = find(uuidOf(view));
        QJsonObject change = before == nullptr ? QJsonObject() : changeOfView(*before, view);
        if (!change.isEmpty()) {
            change.insert(cUuid, uuidOf(view));
            steps.append({{QStringLiteral("change-view"), change}});
        }
    }
    const QStringList order = uuidsOf(next.views);
    if (order != uuids) {
        steps.append({{QStringLiteral("order-views"), QJsonArray::fromStringList(order)}});
    }
    // A view that is added becomes current, and the one that follows a removed current view is the player's choice.
    if (!next.currentView || (!hasOtherViews && currentView == next.currentView)) {
        return steps;
    }
    const bool wasUsual = !currentView || currentView->isEmpty() || find(*currentView) != nullptr;
    if (next.find(*next.currentView) != nullptr) {
        steps.append(
            set(TelvaroDBusDefinitions::getTaskSwitcherInterface(), QStringLiteral("currentView"), *next.currentView));
    } else if (!wasUsual || !next.views.isEmpty() || !next.currentView->isEmpty()) {
        steps.append({{QStringLiteral("current-view"), *next.currentView}});
    }
    return steps;
}

QVector<QJsonObject> ServiceState::screenStepsTo(const ServiceState& next) const
{
    QVector<QJsonObject> steps;
    const QString interface = TelvaroDBusDefinitions::getScreenInterface();
    const QJsonObject changed = difference(screen, next.screen);
    // The screen saver's settings first: they can end it, and it must be enabled to start.
    const QStringList properties{QStringLiteral("screenSaverEnabled"), QStringLiteral("screenSaverTimeoutSeconds"),
                                 QStringLiteral("orientation"), QStringLiteral("fullScreen")};
    for (const QString& property : properties) {
        if (changed.contains(property)) {
            steps.append(set(interface, property, changed.value(property)));
        }
    }
    const bool isActive = next.screen.value(cActive).toBool();
    const bool isDisabled = next.screen.value(properties.constFirst()) == QJsonValue(false);
    const bool mayHaveEnded = changed.contains(properties.at(0)) || changed.contains(properties.at(1));
    if ((changed.contains(cActive) || (isActive && mayHaveEnded)) && !(isActive && isDisabled)) {
        steps.append(set(interface, cActive, isActive));
    }
    return steps;
}
