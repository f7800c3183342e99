// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TestMain.h"

void prepareTestEnvironment()
{
    // Output is decoded with the same locale on every machine.
    qputenv("LC_ALL", "C.UTF-8");
}
