// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
import QtTest 1.2

// Every test function begins with a plain service and fails if it ends with log messages that it has not read.
TestCase {
    function init() {
        service.begin();
    }

    function cleanup() {
        compare(service.takeLog(), []);
    }

    function make(component, properties) {
        return createTemporaryObject(component, this, properties || {});
    }

    // An object that knows what the service has.
    function makeReady(component, properties) {
        const object = make(component, properties);
        tryCompare(object, "available", true);
        return object;
    }

    // Only the calls of one member, so that tests need not know what a type reads when it is made.
    function callsOf(member) {
        return service.takeCalls().filter(call => call.includes("." + member + " "));
    }
}
