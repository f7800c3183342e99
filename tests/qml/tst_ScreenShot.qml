// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
import QtQml 2.2
import QtTest 1.2
import Telvaro 1.0

ServiceTestCase {
    name: "ScreenShot"

    Component {
        id: screenShot
        ScreenShot {}
    }

    Component {
        id: spy
        SignalSpy {}
    }

    function test_the_path_is_signalled() {
        const object = make(screenShot);
        const captured = make(spy, { target: object, signalName: "captured" });
        object.capture("/");
        tryCompare(captured, "count", 1);
        compare(captured.signalArguments[0][0], "/shots/1.png");
        compare(callsOf("ScreenShot"), ["/screenshot de.Telvaro.screenshot.ScreenShot s('/')"]);
    }

    function test_a_directory_may_be_a_file_url() {
        make(screenShot).capture("file:///");
        compare(callsOf("ScreenShot"), ["/screenshot de.Telvaro.screenshot.ScreenShot s('/')"]);
    }

    function test_a_missing_directory_fails_without_a_call() {
        const object = make(screenShot);
        const captured = make(spy, { target: object, signalName: "captured" });
        const failures = make(spy, { target: object, signalName: "requestFailed" });
        object.capture("/nonexistent");
        tryCompare(failures, "count", 1);
        compare(failures.signalArguments[0][0].name, "org.freedesktop.DBus.Error.InvalidArgs");
        compare(failures.signalArguments[0][1], "/nonexistent");
        compare(captured.count, 0);
        compare(callsOf("ScreenShot"), []);
    }

    function test_a_refusal_is_signalled() {
        service.refuseScreenShots("read only");
        const object = make(screenShot);
        const failures = make(spy, { target: object, signalName: "requestFailed" });
        object.capture("/");
        tryCompare(failures, "count", 1);
        compare(failures.signalArguments[0][0], { name: "org.freedesktop.DBus.Error.AccessDenied", message: "read only" });
        compare(failures.signalArguments[0][1], "/");
    }
}
