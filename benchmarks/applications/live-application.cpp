// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "applications/Application.h"

#include <TelvaroTaskSwitcher.h>

// A list of views on the live layer.
int main(int argc, char** argv)
{
    Application application(argc, argv);
    TelvaroTaskSwitcher switcher;
    return application.show(*switcher.getViews(), [&switcher] {
        switcher.next();
    });
}
