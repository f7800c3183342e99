// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Json.h"
#include "Table.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroDeviceDistinction.h>
#include <TelvaroGlobalOverlayDBusConnector.h>
#include <TelvaroNotificationDBusConnector.h>
#include <TelvaroScreenDBusConnector.h>
#include <TelvaroScreenShotDBusConnector.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QJsonObject>

namespace {

/// Gives access to the proxy of a connector, which is protected.
template <typename Connector> class Probe : public Connector
{
public:
    bool isServiceThere() const
    {
        const QDBusConnectionInterface* const busDaemon = this->mInterface.connection().interface();
        return busDaemon != nullptr && busDaemon->isServiceRegistered(this->mInterface.service());
    }

    bool isProxyValid() const
    {
        return this->mInterface.isValid();
    }
};

template <typename Connector> bool isProxyValid()
{
    return Probe<Connector>().isProxyValid();
}

QString yesOrNo(bool answer)
{
    return answer ? QStringLiteral("yes") : QStringLiteral("no");
}

ExitStatus showStatus(bool asJson)
{
    const bool isDevice = TelvaroDeviceDistinction::isCompositorDevice();
    const bool isServiceThere = Probe<TelvaroGlobalOverlayDBusConnector>().isServiceThere();

    QJsonObject proxies;
    bool areProxiesValid = true;
    const auto addProxy = [&](const char* name, auto isProxyValid) {
        // Without the service no proxy is valid, and the screen connector's constructor would log a warning.
        const bool isValid = isServiceThere && isProxyValid();
        proxies.insert(QLatin1String(name), isValid);
        areProxiesValid = areProxiesValid && isValid;
    };
    addProxy("globaloverlay", isProxyValid<TelvaroGlobalOverlayDBusConnector>);
    addProxy("notifications", isProxyValid<TelvaroNotificationDBusConnector>);
    addProxy("screen", isProxyValid<TelvaroScreenDBusConnector>);
    addProxy("screenshot", isProxyValid<TelvaroScreenShotDBusConnector>);
    addProxy("taskswitcher", isProxyValid<TelvaroTaskSwitcherDBusConnector>);

    if (asJson) {
        printJson(QJsonObject{
            {QStringLiteral("compositorDevice"), isDevice},
            {QStringLiteral("service"), TelvaroDBusDefinitions::getServiceName()},
            {QStringLiteral("serviceRegistered"), isServiceThere},
            {QStringLiteral("proxies"), proxies},
        });
    } else {
        Table table({QStringLiteral("WHAT"), QStringLiteral("STATE")});
        table.addRow({QStringLiteral("compositor device"), yesOrNo(isDevice)});
        table.addRow({QStringLiteral("service %1").arg(TelvaroDBusDefinitions::getServiceName()),
                      isServiceThere ? QStringLiteral("registered") : QStringLiteral("not registered")});
        for (auto proxy = proxies.constBegin(); proxy != proxies.constEnd(); ++proxy) {
            table.addRow({QStringLiteral("proxy %1").arg(proxy.key()),
                          proxy.value().toBool() ? QStringLiteral("valid") : QStringLiteral("not valid")});
        }
        printText(table.toText(terminalWidth()));
    }
    return isDevice && isServiceThere && areProxiesValid ? Done : Failed;
}

} // namespace

QList<Command> statusCommands()
{
    return {
        {"status", "Shows whether the compositor can be used from here.", "",
         "Exits with 0 if this is a compositor device, the service is registered on the bus\nand the proxies of its "
         "objects are valid, else with 1.",
         jsonOption,
         [](const QCommandLineParser& parser, const QStringList& arguments) {
             if (!arguments.isEmpty()) {
                 return wrongArgumentCount("status");
             }
             return showStatus(isJsonWanted(parser));
         }},
    };
}
