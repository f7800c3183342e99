// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
import QtQml 2.2
import QtTest 1.2
import Telvaro 1.0

ServiceTestCase {
    id: test
    name: "GlobalOverlay"

    Component {
        id: overlay
        GlobalOverlay {
            Component.onDestruction: ++test.destroyed
        }
    }

    // The text comes last, and is nevertheless the first that is shown.
    Component {
        id: visibleOverlay
        GlobalOverlay {
            visible: true
            text: "from the start"
            Component.onDestruction: ++test.destroyed
        }
    }

    Component {
        id: spy
        SignalSpy {}
    }

    property int destroyed: 0
    readonly property string showing: "/globaloverlay de.Telvaro.globaloverlay.Show s('%1')"
    readonly property string hiding: "/globaloverlay de.Telvaro.globaloverlay.Hide ()"

    function init() {
        service.begin();
        destroyed = 0;
    }

    function calls() {
        return service.takeCalls().filter(call => call.includes("de.Telvaro.globaloverlay."));
    }

    function test_nothing_is_shown_unasked() {
        const object = makeReady(overlay, { text: "quiet" });
        verify(!object.visible);
        compare(calls(), []);
        object.text = "quieter";
        compare(calls(), []);
        object.destroy();
        tryVerify(() => test.destroyed === 1);
        compare(calls(), []);
    }

    function test_a_declared_message_is_shown_once_and_taken_away_with_its_object() {
        const object = makeReady(visibleOverlay);
        compare(calls(), [showing.arg("from the start")]);
        object.destroy();
        tryVerify(() => test.destroyed === 1);
        compare(calls(), [hiding]);
    }

    function test_show_and_hide() {
        const object = makeReady(overlay);
        object.show("hello");
        compare(object.text, "hello");
        verify(object.visible);
        compare(calls(), [showing.arg("hello")]);
        object.hide();
        verify(!object.visible);
        compare(calls(), [hiding]);
        object.hide();
        compare(calls(), []);
    }

    function test_a_new_text_replaces_the_shown_one() {
        const object = makeReady(overlay);
        object.show("one");
        object.text = "two";
        object.text = "two";
        compare(calls(), [showing.arg("one"), showing.arg("two")]);
    }

    function test_show_replaces_the_shown_text_with_one_call() {
        const object = makeReady(overlay);
        object.show("one");
        calls();
        object.show("two");
        compare(calls(), [showing.arg("two")]);
    }

    function test_an_empty_message_is_a_message() {
        const object = makeReady(overlay);
        object.visible = true;
        compare(calls(), [showing.arg("")]);
    }

    function test_a_message_is_shown_again_when_the_service_comes_back() {
        const object = makeReady(overlay);
        object.show("still here");
        service.leave();
        tryCompare(object, "available", false);
        service.comeBack();
        tryCompare(object, "available", true);
        compare(calls(), [showing.arg("still here")]);
    }

    function test_a_message_waits_for_the_service() {
        service.leave();
        const object = make(overlay);
        object.show("early");
        service.comeBack();
        tryCompare(object, "available", true);
        compare(calls(), [showing.arg("early")]);
    }

    function test_a_refused_message_is_signalled() {
        service.refuseOverlays("too long");
        const object = makeReady(overlay);
        const failures = make(spy, { target: object, signalName: "requestFailed" });
        object.show("hello");
        tryCompare(failures, "count", 1);
        compare(failures.signalArguments[0][0], { name: "org.freedesktop.DBus.Error.LimitsExceeded", message: "too long" });
        verify(object.visible);
    }
}
