// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "applications/Application.h"
#include "applications/ViewModel.h"

#include <TelvaroTaskSwitcherDBusConnector.h>

// A list of views on the blocking connectors.
int main(int argc, char** argv)
{
    using Connector = TelvaroTaskSwitcherDBusConnector;

    Application application(argc, argv);
    Connector connector;
    ViewModel<Connector::TaskSwitcherEntry> model;
    QString currentView = connector.getCurrentView().uuid;
    const auto read = [&] {
        model.show(connector.getViews(), currentView);
    };
    QObject::connect(&connector, &Connector::viewsChanged, &model, read);
    QObject::connect(&connector, &Connector::currentViewChanged, &model, [&](const QString& uuid) {
        currentView = uuid;
        // A change of both the list and the current view is signalled by this signal only.
        read();
    });
    read();
    return application.show(model, [&connector] {
        connector.iterateViews(false);
    });
}
