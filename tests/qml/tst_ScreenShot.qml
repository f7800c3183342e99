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

    function test_the_path_is_returned_and_signalled() {
        const object = make(screenShot);
        const captured = make(spy, { target: object, signalName: "captured" });
        compare(object.capture("/"), "/shots/1.png");
        compare(captured.count, 1);
        compare(captured.signalArguments[0][0], "/shots/1.png");
        compare(callsOf("ScreenShot"), ["/screenshot de.Telvaro.screenshot.ScreenShot s('/')"]);
    }

    function test_a_directory_may_be_a_file_url() {
        const object = make(screenShot);
        object.capture("file:///");
        compare(callsOf("ScreenShot"), ["/screenshot de.Telvaro.screenshot.ScreenShot s('/')"]);
    }

    function test_a_missing_directory_fails_without_a_call() {
        const object = make(screenShot);
        const captured = make(spy, { target: object, signalName: "captured" });
        const failed = make(spy, { target: object, signalName: "failed" });
        compare(object.capture("/nonexistent"), "");
        compare(failed.count, 1);
        compare(failed.signalArguments[0][0], "/nonexistent");
        compare(captured.count, 0);
        compare(callsOf("ScreenShot"), []);
        compare(service.takeLog().length, 1);
    }

    function test_a_refusal_fails() {
        service.refuseScreenShots("read only");
        const object = make(screenShot);
        const failed = make(spy, { target: object, signalName: "failed" });
        compare(object.capture("/"), "");
        compare(failed.count, 1);
        verify(service.takeLog()[0].includes("read only"));
    }
}
