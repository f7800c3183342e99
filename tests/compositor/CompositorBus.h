// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroTaskSwitcherDBusConnector.h"

#include <QDBusMessage>
#include <QList>
#include <QString>
#include <QVariant>

/// The compositor's objects over plain QDBusMessages, without the library.
namespace CompositorBus {
using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

extern const QString cTaskSwitcherPath;
extern const QString cTaskSwitcher;
extern const QString cScreenPath;
extern const QString cScreen;
extern const QString cOverlayPath;
extern const QString cOverlay;
extern const QString cScreenShotPath;
extern const QString cScreenShot;
extern const QString cNotificationsPath;
extern const QString cNotifications;
extern const QString cProperties;

QDBusMessage call(const QString& path, const QString& interface, const QString& member,
                  const QVariantList& arguments = {});
/// Throws std::runtime_error on an error reply.
QVariantList callChecked(const QString& path, const QString& interface, const QString& member,
                         const QVariantList& arguments = {});

QVariant get(const QString& path, const QString& interface, const QString& property);
QDBusMessage set(const QString& path, const QString& interface, const QString& property, const QVariant& value);

QList<View> views();
QString currentView();
/// An empty view if there is none.
View viewWithTitle(const QString& title);

/// "<error name>: <text>"; empty for a reply without error.
QString errorOf(const QDBusMessage& reply);
} // namespace CompositorBus
