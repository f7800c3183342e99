// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "PrivateBus.h"

#include <QCoreApplication>
#include <QTest>

/// What every test program sets before Qt looks at it.
void prepareTestEnvironment();

template <typename Test> int runOnPrivateBus(int argc, char** argv)
{
    prepareTestEnvironment();
    QCoreApplication application(argc, argv);
    PrivateBus bus;
    Test test;
    return QTest::qExec(&test, argc, argv);
}

/// The main function of a test program whose test functions find a bus of their own.
#define TELVARO_TEST_MAIN(Test)                                                                                        \
    int main(int argc, char** argv)                                                                                    \
    {                                                                                                                  \
        return runOnPrivateBus<Test>(argc, argv);                                                                      \
    }
