// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ExitStatus.h"

#include <QStringList>

#include <functional>

class QDBusConnection;
class QDBusError;
class QDBusPendingCall;
class TelvaroLiveObject;
class TelvaroScreen;
class TelvaroTaskSwitcher;

/// The compositor service and the bus that it is on. Functions that return bool print the reason for a failure.
namespace Service {

/// The name of the bus: "session" or "system"; with an address, the one for which the libraries have been built.
QString busName();
/// Has the libraries connect to another bus: "session", "system" or an address. To be called before the first use of
/// the bus.
void chooseBus(const QString& bus);
QString busAddress();
QDBusConnection bus();

/// Connects to the bus, if this is a compositor device: on another device the libraries do nothing.
bool connect();
bool connectToBus();
/// Calls a method of the bus itself.
QDBusPendingCall askBus(const QString& method, const QStringList& arguments, int timeoutMilliseconds);
/// To be called before the process ends: Qt frees neither a call that waits for its reply nor a reply that its thread
/// still holds.
void settle();

/// Runs the event loop until the object knows the service's state. Returns whether it is Ready.
bool waitFor(const TelvaroLiveObject& object);
/// Blocks until the reply. Returns whether the request has succeeded.
bool waitFor(QDBusPendingCall request);

/// Connects, reads, and calls the function with the state of the service.
ExitStatus withTaskSwitcher(const std::function<ExitStatus(TelvaroTaskSwitcher&)>& function);
ExitStatus withScreen(const std::function<ExitStatus(TelvaroScreen&)>& function);

/// Returns the error as text for a person.
QString reason(const QDBusError& error);
/// "the service de.Telvaro does not answer"
QString noAnswer();
/// "the service de.Telvaro is not on the bus", or that the bus has ended
QString notOnTheBus();
QString busEnd();

} // namespace Service
