// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "applications/Application.h"
#include "applications/ViewModel.h"
#include "clients/NextView.h"
#include "clients/ViewRecord.h"

/// Shows the list of views until standard input ends, with the messages of the blocking connectors, on a binding that
/// has one function for each of them. Returns the process's exit status.
template <typename Binding> int showByHand(Application& application, Binding& binding)
{
    const auto readCurrentView = [&binding] {
        const ViewRecordList views = binding.getViews();
        return binding.hasOwner() ? findView<ViewRecord>(views, binding.getCurrentView()) : ViewRecord();
    };
    ViewModel<ViewRecord> model;
    QString currentView = readCurrentView().uuid;
    const auto read = [&] {
        model.show(binding.getViews(), currentView);
    };
    binding.onChanged = [&](bool areViewsChanged, bool isCurrentViewChanged) {
        if (isCurrentViewChanged) {
            currentView = readCurrentView().uuid;
        }
        if (areViewsChanged || isCurrentViewChanged) {
            read();
        }
    };
    read();
    return application.show(model, [&] {
        const ViewRecordList views = binding.getViews();
        const ViewRecord next = nextView(views, readCurrentView());
        if (binding.hasOwner()) {
            binding.setCurrentView(next.uuid);
        }
    });
}
