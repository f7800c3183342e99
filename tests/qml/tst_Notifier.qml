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

    function test_without_the_service_a_warning_is_all() {
        service.leave();
        const object = make(notifier, { summary: "lost" });
        verify(!object.available);
        object.send();
        compare(service.takeLog().length, 1);
        service.comeBack();
        tryCompare(object, "available", true);
        object.send();
        compare(callsOf("Notify").length, 1);
    }
}
