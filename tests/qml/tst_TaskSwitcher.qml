// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
import QtQml 2.2
import QtQuick 2.9
import QtTest 1.2
import Telvaro 1.0

ServiceTestCase {
    id: test
    name: "TaskSwitcher"

    readonly property var maps: ({
        uuid: "m", appId: "maps", info1: "1", info2: "2", info3: "3", info4: "4", pid: 4294967295, sortIndex: 7,
        attributes: { title: "Map of the town" }
    })
    readonly property var music: ({ uuid: "s", appId: "music", pid: 2, sortIndex: 1 })
    readonly property var mail: ({ uuid: "l", appId: "mail", pid: 3, sortIndex: 0 })

    Component {
        id: taskSwitcher
        TaskSwitcher {}
    }

    Component {
        id: spy
        SignalSpy {}
    }

    // Delegates that remember how they came to be.
    Component {
        id: list
        Instantiator {
            property int made: 0
            delegate: QtObject {
                readonly property string uuid: model.uuid
                readonly property string title: model.title
                readonly property int number: made
                Component.onCompleted: ++made
            }
        }
    }

    function uuids(switcher) {
        let result = "";
        for (let row = 0; row < switcher.views.count; ++row) {
            result += switcher.views.get(row).uuid;
        }
        return result;
    }

    function test_the_views_are_the_services() {
        service.setViews([maps, music], "s");
        const switcher = makeReady(taskSwitcher);
        compare(switcher.views.count, 2);
        compare(switcher.currentView, "s");
        compare(switcher.currentIndex, 1);
        const row = switcher.views.get(0);
        compare(row.uuid, "m");
        compare(row.appId, "maps");
        compare(row.title, "Map of the town");
        compare([row.info1, row.info2, row.info3, row.info4], ["1", "2", "3", "4"]);
        compare(row.pid, 4294967295);
        compare(row.sortIndex, 7);
        compare(row.attributes.title, "Map of the town");
    }

    function test_a_view_without_a_title_is_called_after_its_application() {
        service.setViews([music], "s");
        compare(makeReady(taskSwitcher).views.get(0).title, "music");
    }

    function test_attributes_of_any_type_are_plain_values() {
        service.setViewsText("[('u', 'a', '', '', '', '', uint32 1, uint32 0, {"
                             + "'list': <[1, 2]>, 'map': <{'k': <'v'>}>, 'struct': <('x', true)>,"
                             + "'path': <objectpath '/o'>, 'variant': <<'inner'>>, 'number': <2.5>,"
                             + "'keys': <{uint32 7: 'seven'}>, 'deep': <[{'a': [(1, 'b')]}]>})]", "u");
        const attributes = makeReady(taskSwitcher).views.get(0).attributes;
        compare(attributes.list, [1, 2]);
        compare(attributes.map, { k: "v" });
        compare(attributes.struct, ["x", true]);
        compare(attributes.path, "/o");
        compare(attributes.variant, "inner");
        compare(attributes.number, 2.5);
        compare(attributes.keys, { "7": "seven" });
        compare(attributes.deep, [{ a: [[1, "b"]] }]);
    }

    function test_a_key_that_is_sent_twice_has_the_last_value() {
        service.setViewsText("[('u', 'a', '', '', '', '', uint32 1, uint32 0,"
                             + "@a{sv} [{'title', <'first'>}, {'title', <'last'>}])]", "u");
        const row = makeReady(taskSwitcher).views.get(0);
        compare(row.attributes.title, "last");
        compare(row.title, "last");
    }

    function test_without_views_there_is_no_current_one() {
        const switcher = makeReady(taskSwitcher);
        compare(switcher.views.count, 0);
        compare(switcher.currentView, "");
        compare(switcher.currentIndex, -1);
    }

    function test_delegates_live_on_with_their_views() {
        service.setViews([maps, music], "s");
        const switcher = makeReady(taskSwitcher);
        const delegates = make(list, { model: switcher.views });
        compare(delegates.count, 2);
        compare(delegates.made, 2);
        const mapsDelegate = delegates.objectAt(0);

        service.setViews([mail, Object.assign({}, maps, { attributes: { title: "Atlas" } })], "s");
        service.notifyViews();
        tryCompare(switcher.views, "count", 2);
        tryVerify(() => uuids(switcher) === "lm");
        verify(delegates.objectAt(1) === mapsDelegate);
        compare(mapsDelegate.title, "Atlas");
        compare(delegates.made, 3);

        service.setViews([maps, mail], "s");
        service.notifyViews();
        tryVerify(() => uuids(switcher) === "ml");
        compare(delegates.made, 3);
    }

    function test_one_notification_of_both_changes_both() {
        service.setViews([maps], "m");
        const switcher = makeReady(taskSwitcher);
        service.setViews([maps, music], "s");
        service.notifyAll();
        tryCompare(switcher, "currentView", "s");
        compare(switcher.views.count, 2);
        compare(switcher.currentIndex, 1);
    }

    function test_the_current_row_follows_the_list() {
        service.setViews([maps, music], "s");
        const switcher = makeReady(taskSwitcher);
        const viewSpy = make(spy, { target: switcher, signalName: "currentViewChanged" });
        const indexSpy = make(spy, { target: switcher, signalName: "currentIndexChanged" });
        service.setViews([music, maps], "s");
        service.notifyViews();
        tryCompare(switcher, "currentIndex", 0);
        compare(indexSpy.count, 1);
        compare(viewSpy.count, 0);
    }

    function test_the_current_view_is_a_role() {
        service.setViews([maps, music], "m");
        const switcher = makeReady(taskSwitcher);
        const current = () => [switcher.views.get(0).current, switcher.views.get(1).current];
        compare(current(), [true, false]);
        service.setViews([maps, music], "s");
        service.notifyAll();
        tryCompare(switcher, "currentView", "s");
        compare(current(), [false, true]);
    }

    function test_a_change_costs_no_call() {
        service.setViews([maps], "m");
        const switcher = makeReady(taskSwitcher);
        service.setViews([maps, music], "s");
        service.takeCalls();
        service.notifyAll();
        tryCompare(switcher.views, "count", 2);
        compare(service.takeCalls(), []);
    }

    function test_values_that_a_notification_leaves_out_are_read() {
        service.setViews([maps], "m");
        const switcher = makeReady(taskSwitcher);
        service.setViews([maps, music], "s");
        service.invalidateAll();
        tryCompare(switcher, "currentView", "s");
        tryCompare(switcher.views, "count", 2);
    }

    function test_attributes_of_any_type_can_be_compared() {
        service.setViewsText("[('u', 'a', '', '', '', '', uint32 1, uint32 0,"
                             + "{'struct': <('x', true)>, 'path': <objectpath '/o'>})]", "u");
        const switcher = makeReady(taskSwitcher);
        const changes = make(spy, { target: switcher.views, signalName: "dataChanged" });
        service.notifyViews();
        service.setViews([music], "u");
        service.notifyViews();
        tryVerify(() => uuids(switcher) === "s");
        compare(changes.count, 0);
    }

    function test_switching_changes_the_current_view_when_the_service_says_so() {
        service.setViews([maps, music], "m");
        service.storeWrites();
        const switcher = makeReady(taskSwitcher);
        const failures = make(spy, { target: switcher, signalName: "requestFailed" });
        switcher.switchTo("s");
        compare(switcher.currentView, "m");
        tryCompare(switcher, "currentView", "s");
        switcher.currentView = "m";
        tryCompare(switcher, "currentView", "m");
        switcher.switchToView("music", 1);
        tryCompare(switcher, "currentView", "s");
        compare(failures.count, 0);
    }

    function test_next_and_previous_stay_within_the_application() {
        const other = { uuid: "n", appId: "maps", sortIndex: 8 };
        service.setViews([maps, music, other], "m");
        service.storeWrites();
        const switcher = makeReady(taskSwitcher);
        switcher.next();
        tryCompare(switcher, "currentView", "n");
        switcher.next();
        tryCompare(switcher, "currentView", "m");
        switcher.previous();
        tryCompare(switcher, "currentView", "n");
    }

    function test_a_refused_switch_is_signalled_and_changes_nothing() {
        service.setViews([maps, music], "m");
        service.refuseCurrentView("not now");
        const switcher = makeReady(taskSwitcher);
        const failures = make(spy, { target: switcher, signalName: "requestFailed" });
        const refusal = { name: "org.freedesktop.DBus.Error.InvalidArgs", message: "not now" };
        switcher.switchTo("s");
        tryCompare(failures, "count", 1);
        compare(failures.signalArguments[0][0], refusal);
        switcher.currentView = "s";
        tryCompare(failures, "count", 2);
        compare(failures.signalArguments[1][0], refusal);
        compare(switcher.currentView, "m");
    }

    function test_a_view_that_is_not_there_is_refused_without_a_call() {
        service.setViews([maps], "m");
        const switcher = makeReady(taskSwitcher);
        service.takeCalls();
        const failures = make(spy, { target: switcher, signalName: "requestFailed" });
        switcher.switchTo("");
        switcher.switchToView("maps");
        tryCompare(failures, "count", 2);
        compare(failures.signalArguments[1][0].name, "org.freedesktop.DBus.Error.InvalidArgs");
        compare(service.takeCalls(), []);
    }

    function test_a_hung_service_holds_nothing_up() {
        service.setViews([maps, music], "m");
        service.storeWrites();
        service.freeze();
        const switcher = make(taskSwitcher);
        compare(switcher.status, TaskSwitcher.Loading);
        verify(!switcher.available);
        switcher.switchTo("s");
        service.thaw();
        tryCompare(switcher, "currentView", "s");
    }

    function test_the_service_may_leave_and_come_back() {
        service.setViews([maps, music], "s");
        const switcher = makeReady(taskSwitcher);
        const statuses = make(spy, { target: switcher, signalName: "statusChanged" });
        service.leave();
        tryCompare(switcher, "available", false);
        compare(switcher.views.count, 0);
        compare(switcher.currentView, "");
        compare(switcher.currentIndex, -1);

        service.comeBack();
        tryCompare(switcher, "available", true);
        compare(switcher.views.count, 0);
        service.setViews([mail], "l");
        service.notifyAll();
        tryCompare(switcher, "currentView", "l");
        compare(switcher.views.count, 1);
        // Absent, loading, ready.
        compare(statuses.count, 3);
    }

    function test_a_switcher_made_before_its_service_gets_the_views_when_it_comes() {
        service.leave();
        const switcher = make(taskSwitcher);
        tryCompare(switcher, "status", TaskSwitcher.Absent);
        compare(switcher.views.count, 0);
        service.comeBack();
        tryCompare(switcher, "available", true);
        service.setViews([maps], "m");
        service.notifyAll();
        tryCompare(switcher, "currentView", "m");
    }

    function test_views_cannot_be_made() {
        compare(Qt.createComponent("ForbiddenModel.qml").status, Component.Error);
    }
}
