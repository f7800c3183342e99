// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TestMain.h"

void prepareTestEnvironment()
{
    // Programs' output is decoded alike on every machine.
    qputenv("LC_ALL", "C.UTF-8");
}
