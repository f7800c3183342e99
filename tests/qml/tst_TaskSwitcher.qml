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

    function test_the_views_are_there_from_the_start() {
        service.setViews([maps, music], "s");
        const switcher = make(taskSwitcher);
        verify(switcher.available);
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
        compare(make(taskSwitcher).views.get(0).title, "music");
    }

    function test_attributes_of_any_type_are_plain_values() {
        service.setViewsText("[('u', 'a', '', '', '', '', uint32 1, uint32 0, {"
                             + "'list': <[1, 2]>, 'map': <{'k': <'v'>}>, 'struct': <('x', true)>,"
                             + "'path': <objectpath '/o'>, 'variant': <<'inner'>>, 'number': <2.5>,"
                             + "'keys': <{uint32 7: 'seven'}>, 'deep': <[{'a': [(1, 'b')]}]>})]", "u");
        const attributes = make(taskSwitcher).views.get(0).attributes;
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
        const row = make(taskSwitcher).views.get(0);
        compare(row.attributes.title, "last");
        compare(row.title, "last");
    }

    function test_without_views_there_is_no_current_one() {
        const switcher = make(taskSwitcher);
        verify(switcher.available);
        compare(switcher.views.count, 0);
        compare(switcher.currentView, "");
        compare(switcher.currentIndex, -1);
    }

    function test_delegates_live_on_with_their_views() {
        service.setViews([maps, music], "s");
        const switcher = make(taskSwitcher);
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
        const switcher = make(taskSwitcher);
        service.setViews([maps, music], "s");
        service.notifyAll();
        tryCompare(switcher, "currentView", "s");
        compare(switcher.views.count, 2);
        compare(switcher.currentIndex, 1);
    }

    function test_the_current_row_follows_the_list() {
        service.setViews([maps, music], "s");
        const switcher = make(taskSwitcher);
        const viewSpy = make(spy, { target: switcher, signalName: "currentViewChanged" });
        const indexSpy = make(spy, { target: switcher, signalName: "currentIndexChanged" });
        service.setViews([music, maps], "s");
        service.notifyViews();
        tryCompare(switcher, "currentIndex", 0);
        compare(indexSpy.count, 1);
        compare(viewSpy.count, 0);
    }

    function test_a_burst_of_notifications_is_one_update() {
        service.setViews([maps], "m");
        const switcher = make(taskSwitcher);
        service.setViews([maps, music], "s");
        service.takeCalls();
        service.notifyViewsTimes(10);
        tryCompare(switcher.views, "count", 2);
        compare(callsOf("Get").length, 1);
    }

    function test_switching_changes_the_current_view_when_the_service_says_so() {
        service.setViews([maps, music], "m");
        service.storeWrites();
        const switcher = make(taskSwitcher);
        const failures = make(spy, { target: switcher, signalName: "switchFailed" });
        verify(switcher.switchTo("s"));
        compare(switcher.currentView, "m");
        tryCompare(switcher, "currentView", "s");
        switcher.currentView = "m";
        tryCompare(switcher, "currentView", "m");
        verify(switcher.switchToView("music", 1));
        tryCompare(switcher, "currentView", "s");
        compare(failures.count, 0);
    }

    function test_next_and_previous_stay_within_the_application() {
        const other = { uuid: "n", appId: "maps", sortIndex: 8 };
        service.setViews([maps, music, other], "m");
        service.storeWrites();
        const switcher = make(taskSwitcher);
        verify(switcher.next());
        tryCompare(switcher, "currentView", "n");
        verify(switcher.next());
        tryCompare(switcher, "currentView", "m");
        verify(switcher.previous());
        tryCompare(switcher, "currentView", "n");
    }

    function test_a_refused_switch_is_told_and_changes_nothing() {
        service.setViews([maps, music], "m");
        service.refuseCurrentView("not now");
        const switcher = make(taskSwitcher);
        const failures = make(spy, { target: switcher, signalName: "switchFailed" });
        verify(!switcher.switchTo("s"));
        compare(failures.count, 1);
        compare(failures.signalArguments[0][0], "not now");
        switcher.currentView = "s";
        compare(failures.count, 2);
        compare(switcher.currentView, "m");
        verify(!switcher.switchTo(""));
        compare(failures.signalArguments[2][0], "uuid should not be empty");
    }

    function test_a_view_that_is_not_there_is_refused_with_a_warning() {
        service.setViews([maps], "m");
        const switcher = make(taskSwitcher);
        verify(!switcher.switchToView("maps"));
        compare(service.takeLog().length, 2);
    }

    function test_the_service_may_leave_and_come_back() {
        service.setViews([maps, music], "s");
        const switcher = make(taskSwitcher);
        const availability = make(spy, { target: switcher, signalName: "availableChanged" });
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
        compare(availability.count, 2);
    }

    function test_a_switcher_made_before_its_service_gets_the_views_when_it_comes() {
        service.leave();
        const switcher = make(taskSwitcher);
        verify(!switcher.available);
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
