// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "PrivateBus.h"

#include <QCoreApplication>
#include <QTest>

/// Sets the environment of a test program; to be called before Qt reads it.
void prepareTestEnvironment();

template <typename Test> int runOnPrivateBus(int argc, char** argv)
{
    prepareTestEnvironment();
    QCoreApplication application(argc, argv);
    PrivateBus bus;
    Test test;
    return QTest::qExec(&test, argc, argv);
}

/// Defines the main function of a test program with a private bus.
#define TELVARO_TEST_MAIN(Test)                                                                                        \
    int main(int argc, char** argv)                                                                                    \
    {                                                                                                                  \
        return runOnPrivateBus<Test>(argc, argv);                                                                      \
    }
