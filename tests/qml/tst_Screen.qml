// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
import QtQml 2.2
import QtTest 1.2
import Telvaro 1.0

ServiceTestCase {
    id: test
    name: "Screen"

    Component {
        id: screen
        Screen {}
    }

    Component {
        id: spy
        SignalSpy {}
    }

    function values(object) {
        return [object.screenSaverActive, object.screenSaverEnabled, object.screenSaverTimeout, object.orientation,
                object.fullScreen];
    }

    function test_the_settings_are_the_services() {
        service.setScreen("screenSaverActive", "true");
        service.setScreen("orientation", "'90'");
        service.setScreen("fullScreen", "true");
        compare(values(makeReady(screen)), [true, true, 300, "90", true]);
    }

    function test_every_setting_follows_the_service_data() {
        return [
            { tag: "active", name: "screenSaverActive", property: "screenSaverActive", text: "true", value: true },
            { tag: "enabled", name: "screenSaverEnabled", property: "screenSaverEnabled", text: "false", value: false },
            { tag: "timeout", name: "screenSaverTimeoutSeconds", property: "screenSaverTimeout", text: "60",
              value: 60 },
            { tag: "orientation", name: "orientation", property: "orientation", text: "'270'", value: "270" },
            { tag: "full screen", name: "fullScreen", property: "fullScreen", text: "true", value: true }
        ];
    }

    function test_every_setting_follows_the_service(data) {
        const object = makeReady(screen);
        const changes = make(spy, { target: object, signalName: data.property + "Changed" });
        service.notifyScreen(data.name, data.text);
        tryCompare(object, data.property, data.value);
        compare(changes.count, 1);

        service.notifyScreen(data.name, data.text);
        service.notifyScreen("orientation", "'180'");
        tryCompare(object, "orientation", "180");
        compare(changes.count, data.property === "orientation" ? 2 : 1);
    }

    function test_a_full_screen_that_was_there_from_the_start_ends() {
        service.setScreen("fullScreen", "true");
        const object = makeReady(screen);
        service.notifyScreen("fullScreen", "false");
        tryCompare(object, "fullScreen", false);
    }

    function test_a_setting_that_is_only_invalidated_is_read() {
        const object = makeReady(screen);
        service.setScreen("screenSaverTimeoutSeconds", "5");
        service.invalidateScreen("screenSaverTimeoutSeconds");
        tryCompare(object, "screenSaverTimeout", 5);
    }

    function test_a_change_costs_no_call() {
        const object = makeReady(screen);
        service.takeCalls();
        service.notifyScreen("screenSaverTimeoutSeconds", "6");
        tryCompare(object, "screenSaverTimeout", 6);
        compare(service.takeCalls(), []);
    }

    function test_a_write_is_a_request_data() {
        return [
            { tag: "enabled", property: "screenSaverEnabled", value: false,
              set: "('de.Telvaro.screen', 'screenSaverEnabled', <false>)" },
            { tag: "timeout", property: "screenSaverTimeout", value: 45,
              set: "('de.Telvaro.screen', 'screenSaverTimeoutSeconds', <45>)" },
            { tag: "orientation", property: "orientation", value: "90",
              set: "('de.Telvaro.screen', 'orientation', <'90'>)" },
            { tag: "full screen", property: "fullScreen", value: true,
              set: "('de.Telvaro.screen', 'fullScreen', <true>)" }
        ];
    }

    function test_a_write_is_a_request(data) {
        service.storeWrites();
        const object = makeReady(screen);
        const changes = make(spy, { target: object, signalName: data.property + "Changed" });
        service.takeCalls();
        const before = object[data.property];
        object[data.property] = data.value;
        compare(object[data.property], before);
        tryCompare(object, data.property, data.value);
        compare(changes.count, 1);
        const calls = service.takeCalls();
        compare(calls.length, 1);
        verify(calls[0].includes(".Set ssv" + data.set), calls[0]);
    }

    function test_a_refused_write_is_signalled_and_changes_nothing() {
        service.refuseScreen("screenSaverTimeoutSeconds", "negative");
        const object = makeReady(screen);
        const changes = make(spy, { target: object, signalName: "screenSaverTimeoutChanged" });
        const failures = make(spy, { target: object, signalName: "requestFailed" });
        object.screenSaverTimeout = -1;
        tryCompare(failures, "count", 1);
        compare(failures.signalArguments[0][0], { name: "org.freedesktop.DBus.Error.InvalidArgs", message: "negative" });
        compare(object.screenSaverTimeout, 300);
        compare(changes.count, 0);
    }

    function test_the_screen_saver_can_be_enabled_again() {
        service.storeWrites();
        const object = makeReady(screen);
        object.screenSaverEnabled = false;
        tryCompare(object, "screenSaverEnabled", false);
        object.screenSaverEnabled = true;
        tryCompare(object, "screenSaverEnabled", true);
    }

    function test_the_service_may_leave_and_come_back() {
        service.setScreen("orientation", "'90'");
        const object = makeReady(screen);
        service.leave();
        tryCompare(object, "available", false);
        compare(object.status, Screen.Absent);
        compare(values(object), [false, false, 0, "", false]);
        service.comeBack();
        tryCompare(object, "available", true);
        compare(values(object), [false, true, 300, "0", false]);
        service.notifyScreen("orientation", "'270'");
        tryCompare(object, "orientation", "270");
    }
}
