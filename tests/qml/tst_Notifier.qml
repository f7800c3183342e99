// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
import QtQml 2.2
import QtTest 1.2
import Telvaro 1.0

ServiceTestCase {
    name: "Notifier"

    Component {
        id: notifier
        Notifier {}
    }

    Component {
        id: spy
        SignalSpy {}
    }

    function test_a_notification_is_sent_as_it_is_set() {
        const object = make(notifier, { icon: "mail-unread", summary: "Mail", body: "From <you>",
                                        actions: ["mail-reply", "Reply", "window-close", "Close"] });
        object.send();
        const calls = callsOf("Notify");
        compare(calls.length, 1);
        verify(calls[0].includes(".Notify susssasa{sv}i("), calls[0]);
        verify(calls[0].includes("'mail-unread', 'Mail', 'From <you>', "
                                 + "['mail-reply', 'Reply', 'window-close', 'Close']"), calls[0]);
    }

    function test_an_empty_notification_is_sent_too() {
        make(notifier).send();
        compare(callsOf("Notify").length, 1);
    }

    function test_nothing_is_sent_before_it_is_asked_for() {
        const object = make(notifier, { summary: "quiet" });
        object.body = "still";
        compare(callsOf("Notify").length, 0);
    }

    function test_the_id_is_signalled() {
        service.giveNotificationId(4294967295);
        const object = make(notifier, { summary: "Mail" });
        const sent = make(spy, { target: object, signalName: "sent" });
        object.send();
        tryCompare(sent, "count", 1);
        compare(sent.signalArguments[0][0], 4294967295);
    }

    function test_a_refusal_is_signalled() {
        service.refuseNotifications("too many");
        const object = make(notifier);
        const sent = make(spy, { target: object, signalName: "sent" });
        const failures = make(spy, { target: object, signalName: "requestFailed" });
        object.send();
        tryCompare(failures, "count", 1);
        compare(failures.signalArguments[0][0], { name: "org.freedesktop.DBus.Error.LimitsExceeded", message: "too many" });
        compare(sent.count, 0);
    }

    function test_without_the_service_it_fails_and_later_it_does_not() {
        service.leave();
        const object = make(notifier, { summary: "lost" });
        const failures = make(spy, { target: object, signalName: "requestFailed" });
        object.send();
        tryCompare(failures, "count", 1);
        compare(failures.signalArguments[0][0].name, "org.freedesktop.DBus.Error.NameHasNoOwner");
        compare(object.status, Notifier.Absent);
        service.comeBack();
        tryCompare(object, "available", true);
        object.send();
        compare(callsOf("Notify").length, 1);
    }
}
