// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
import QtTest 1.2
import Telvaro 1.0

TestCase {
    name: "Module"

    TaskSwitcher {
        id: taskSwitcher
    }

    function test_withoutTheService() {
        compare(taskSwitcher.available, false);
    }

    function test_withTheService() {
        tryCompare(taskSwitcher, "available", true);
        compare(taskSwitcher.views.count, 0);
    }
}
