// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorProcess.h"
#include "TestMain.h"

#include <QFile>
#include <QObject>
#include <QTemporaryDir>

/// An invalid script is rejected before anything is started.
class CompositorScriptFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesAFileThatCannotBeRead();
    void refusesAScriptThatIsWrong_data();
    void refusesAScriptThatIsWrong();
    void needsAValue();
};

void CompositorScriptFileTest::refusesAFileThatCannotBeRead()
{
    CompositorProcess compositor;
    QCOMPARE(compositor.runToEnd({QStringLiteral("--script"), QStringLiteral("/no/such/file.json")}), 2);
    QCOMPARE(compositor.errors(),
             QByteArray("telvaro-compositor: /no/such/file.json: cannot be read: No such file or directory\n"
                        "telvaro-compositor: see 'telvaro-compositor --help'\n"));
    QCOMPARE(compositor.output(), QByteArray());
}

void CompositorScriptFileTest::needsAValue()
{
    CompositorProcess compositor;
    QCOMPARE(compositor.runToEnd({QStringLiteral("--script")}), 2);
    QVERIFY(compositor.errors().contains("Missing value after '--script'."));
}

void CompositorScriptFileTest::refusesAScriptThatIsWrong_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("reason");
    const auto add = [](const char* name, const QByteArray& script, const QByteArray& reason) {
        QTest::newRow(name) << script << reason;
    };
    const QByteArray interfaces = "the interfaces are \"de.Telvaro.taskswitcher\", \"de.Telvaro.screen\", "
                                  "\"de.Telvaro.globaloverlay\", \"de.Telvaro.screenshot\", "
                                  "\"org.freedesktop.Notifications\"";
    const QByteArray fault = R"("error": "a.b"}}])";
    const QByteArray seconds = "a number of seconds from 0 to 1000000 is expected";

    add("nothing", "", "line 1: not JSON: illegal value");
    add("not JSON", "[\n  {\"at\": 1,,}\n]", "line 2: not JSON: unterminated object");
    add("no list", "{}", "a list of steps is expected");
    add("no step", "[{\"freeze\": 0}, 1]", "step 2: an object is expected");

    add("no action", R"([{"at": 1}])",
        "step 1: one of \"add-view\", \"change-view\", \"order-views\", \"current-view\", \"remove-view\", "
        "\"blanking\", \"set\", \"call\", \"fault\", \"end-fault\", \"service\", "
        "\"freeze\" is expected");
    add("unknown action", R"([{"explode": 1}])",
        "step 1: one of \"add-view\", \"change-view\", \"order-views\", \"current-view\", \"remove-view\", "
        "\"blanking\", \"set\", \"call\", \"fault\", \"end-fault\", \"service\", "
        "\"freeze\" is expected, not \"explode\"");
    add("two actions", R"([{"freeze": 1, "service": "gone"}])",
        "step 1: only one of \"service\", \"freeze\" is expected");
    add("unknown key", R"([{"freeze": 1, "until": 3}])", "step 1: unknown key \"until\"");
    add("negative time", R"([{"at": -0.5, "freeze": 1}])", "step 1, \"at\": " + seconds);
    add("endless time", R"([{"at": 1e9, "freeze": 1}])", "step 1, \"at\": " + seconds);
    add("time as text", R"([{"at": "1", "freeze": 1}])", "step 1, \"at\": " + seconds);
    add("negative freeze", R"([{"freeze": -1}])", "step 1, \"freeze\": " + seconds);

    add("event of nothing", R"([{"after": {}, "freeze": 1}])",
        R"(step 1, "after": one of "call", "get", "set", "interface", "view" is expected)");
    add("event as text", R"([{"after": "view", "freeze": 1}])", R"(step 1, "after": an object is expected)");
    add("event after no times", R"([{"after": {"view": "a", "times": 0}, "freeze": 1}])",
        R"(step 1, "after", "times": a whole number from 1 to 2147483647 is expected)");
    add("event after half a time", R"([{"after": {"view": "a", "times": 1.5}, "freeze": 1}])",
        R"(step 1, "after", "times": a whole number from 1 to 2147483647 is expected)");
    add("event with an unknown key", R"([{"after": {"view": "a", "of": 1}, "freeze": 1}])",
        R"(step 1, "after": unknown key "of")");

    add("view as text", R"([{"add-view": "one"}])", R"(step 1, "add-view": an object is expected)");
    add("view without an id", R"([{"add-view": {"appId": "a", "pid": 1}}])",
        R"(step 1, "add-view": "uuid" is missing)");
    add("view with an empty id", R"([{"add-view": {"uuid": "", "appId": "a", "pid": 1}}])",
        R"(step 1, "add-view", "uuid": a text is expected that is not empty)");
    add("view without a process", R"([{"add-view": {"uuid": "u", "appId": "a", "pid": -1}}])",
        R"(step 1, "add-view", "pid": a whole number from 0 to 4294967295 is expected)");
    add("view with an unknown key", R"([{"add-view": {"uuid": "u", "appId": "a", "pid": 1, "name": "n"}}])",
        R"(step 1, "add-view": unknown key "name")");
    add("view with a list as an attribute",
        R"([{"add-view": {"uuid": "u", "appId": "a", "pid": 1, "attributes": {"x": [1]}}}])",
        R"(step 1, "add-view", "attributes", "x": a text, a number, true or false is expected)");
    add("record as text", R"([{"add-view": {"uuid": "u", "appId": "a", "pid": 1, "record": "r"}}])",
        R"(step 1, "add-view", "record": an object is expected)");
    add("record with an unknown key",
        R"([{"add-view": {"uuid": "u", "appId": "a", "pid": 1, "record": {"info5": "x"}}}])",
        R"(step 1, "add-view", "record": unknown key "info5")");
    add("record with a number as a text",
        R"([{"add-view": {"uuid": "u", "appId": "a", "pid": 1, "record": {"info1": 1}}}])",
        R"(step 1, "add-view", "record", "info1": a text is expected)");
    add("record with a negative sort index", R"([{"change-view": {"uuid": "u", "record": {"sortIndex": -1}}}])",
        R"(step 1, "change-view", "record", "sortIndex": a whole number from 0 to 4294967295 is expected)");
    add("change without an id", R"([{"change-view": {"title": "t"}}])", R"(step 1, "change-view": "uuid" is missing)");
    add("change to an empty title", R"([{"change-view": {"uuid": "u", "title": ""}}])",
        R"(step 1, "change-view", "title": a text is expected that is not empty)");
    add("order as text", R"([{"order-views": "one"}])", R"(step 1, "order-views": a list of texts is expected)");
    add("order of a view with itself", R"([{"order-views": ["one", "two", "one"]}])",
        R"(step 1, "order-views": every view is expected only once)");
    add("number as the current view", R"([{"current-view": 1}])", R"(step 1, "current-view": a text is expected)");
    add("unknown blanking", R"([{"blanking": "never"}])",
        R"(step 1, "blanking": "automatic" or "scripted" is expected)");
    add("number as a view to remove", R"([{"remove-view": 1}])",
        R"(step 1, "remove-view": a text is expected that is not empty)");

    add("unknown interface", R"([{"set": {"de.Telvaro.lamp.on": true}}])",
        "step 1, \"set\": \"de.Telvaro.lamp.on\" is not a member of an interface; " + interfaces);
    add("unknown property", R"([{"set": {"de.Telvaro.screen.colour": true}}])",
        R"(step 1, "set": de.Telvaro.screen has no property "colour"; it has "fullScreen", "orientation", "screenSaverActive", "screenSaverEnabled", "screenSaverTimeoutSeconds")");
    add("property that is read only", R"([{"set": {"de.Telvaro.taskswitcher.views": []}}])",
        R"(step 1, "set", "de.Telvaro.taskswitcher.views": this property can only be read)");
    add("number for a text", R"([{"set": {"de.Telvaro.screen.orientation": 90}}])",
        R"(step 1, "set", "de.Telvaro.screen.orientation": a text is expected)");
    add("text for a bool", R"([{"set": {"de.Telvaro.screen.fullScreen": "true"}}])",
        R"(step 1, "set", "de.Telvaro.screen.fullScreen": true or false is expected)");
    add("number that is too large", R"([{"set": {"de.Telvaro.screen.screenSaverTimeoutSeconds": 3e9}}])",
        "step 1, \"set\", \"de.Telvaro.screen.screenSaverTimeoutSeconds\": a whole number from -2147483648 to "
        "2147483647 "
        "is expected");
    add("two properties", R"([{"set": {"de.Telvaro.screen.fullScreen": true, "de.Telvaro.screen.orientation": "90"}}])",
        R"(step 1, "set": an object with one member is expected)");

    add("unknown method", R"([{"call": {"de.Telvaro.globaloverlay.Blink": []}}])",
        R"(step 1, "call": de.Telvaro.globaloverlay has no method "Blink"; it has "Hide", "Show")");
    add("signal as a method", R"([{"call": {"org.freedesktop.Notifications.ActionInvoked": [1, "a"]}}])",
        R"(step 1, "call": org.freedesktop.Notifications has no method "ActionInvoked"; it has "CloseNotification", "GetCapabilities", "GetServerInformation", "Notify")");
    add("wrong number of arguments", R"([{"call": {"de.Telvaro.globaloverlay.Show": []}}])",
        R"(step 1, "call", "de.Telvaro.globaloverlay.Show": a list of the method's 1 arguments is expected)");
    add("arguments without a list", R"([{"call": {"de.Telvaro.globaloverlay.Show": "text"}}])",
        R"(step 1, "call", "de.Telvaro.globaloverlay.Show": a list of the method's 1 arguments is expected)");
    add("argument of the wrong type", R"([{"call": {"org.freedesktop.Notifications.CloseNotification": [-1]}}])",
        "step 1, \"call\", \"org.freedesktop.Notifications.CloseNotification\", argument 1: a whole number from 0 to "
        "4294967295 is expected");
    add("list of the wrong type",
        R"([{"call": {"org.freedesktop.Notifications.Notify": ["", 0, "", "", "", [1], {}, 0]}}])",
        R"(step 1, "call", "org.freedesktop.Notifications.Notify", argument 6: a list of texts is expected)");
    add("hint of the wrong type",
        R"([{"call": {"org.freedesktop.Notifications.Notify": ["", 0, "", "", "", [], {"x": null}, 0]}}])",
        "step 1, \"call\", \"org.freedesktop.Notifications.Notify\", argument 7, \"x\": a text, a number, true or "
        "false "
        "is expected");

    add("fault of nothing", R"([{"fault": {)" + fault,
        R"(step 1, "fault": one of "call", "get", "set", "interface" is expected, not "error")");
    add("fault of two", R"([{"fault": {"get": "a.b", "set": "a.b", )" + fault,
        R"(step 1, "fault": only one of "get", "set" is expected)");
    add("fault of an unknown interface", R"([{"fault": {"interface": "de.Telvaro", )" + fault,
        R"(step 1, "fault", "interface": there is no interface "de.Telvaro")");
    add("fault of a member of an unknown interface", R"([{"fault": {"call": "Show", )" + fault,
        R"(step 1, "fault", "call": "Show" is not a member of an interface; )" + interfaces);
    add("fault of an unknown method", R"([{"fault": {"call": "de.Telvaro.screen.orientation", )" + fault,
        R"(step 1, "fault", "call": de.Telvaro.screen has no method "orientation"; it has none)");
    add("fault of an unknown property", R"([{"fault": {"get": "de.Telvaro.globaloverlay.Show", )" + fault,
        R"(step 1, "fault", "get": de.Telvaro.globaloverlay has no property "Show"; it has none)");
    add("fault of a write that there is not", R"([{"fault": {"set": "de.Telvaro.screen.screenSaverActive", )" + fault,
        R"(step 1, "fault", "set": "de.Telvaro.screen.screenSaverActive" can only be read)");
    const QByteArray orientation = R"([{"fault": {"get": "de.Telvaro.screen.orientation")";
    const QByteArray noAnswer =
        R"(step 1, "fault": either "silent": true or at least one of "error" and "delay" is expected)";
    add("fault that is none", orientation + "}}]", noAnswer);
    add("fault that is silent and answers", orientation + R"(, "silent": true, )" + fault, noAnswer);
    add("fault with a text alone", orientation + R"(, "delay": 1, "text": "a"}}])",
        R"(step 1, "fault": unknown key "text")");
    add("error without a dot", orientation + R"(, "error": "Broken"}}])",
        R"(step 1, "fault", "error": "Broken" is not the name of a D-Bus error)");
    add("negative delay", orientation + R"(, "delay": -1}}])", "step 1, \"fault\", \"delay\": " + seconds);
    add("negative lifetime", orientation + R"(, "seconds": -1, )" + fault,
        "step 1, \"fault\", \"seconds\": " + seconds);
    add("fault for no call", orientation + R"(, "times": 0, )" + fault,
        R"(step 1, "fault", "times": a whole number from 1 to 2147483647 is expected)");
    add("end of a fault with an answer", R"([{"end-fault": {"get": "de.Telvaro.screen.orientation", )" + fault,
        R"(step 1, "end-fault": unknown key "error")");
    add("unknown state of the service", R"([{"service": "away"}])",
        R"(step 1, "service": "gone" or "back" is expected)");
}

void CompositorScriptFileTest::refusesAScriptThatIsWrong()
{
    QFETCH(QByteArray, script);
    QFETCH(QByteArray, reason);
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("script.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(script);
    file.close();

    // Without a display or a bus the compositor could not start anyway.
    CompositorProcess compositor;
    compositor.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("none"));
    compositor.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/dev/null"));
    QCOMPARE(compositor.runToEnd({QStringLiteral("--script=") + file.fileName()}), 2);
    QCOMPARE(compositor.errors(),
             "telvaro-compositor: " + file.fileName().toLocal8Bit() + ": " + reason
                 + "\ntelvaro-compositor: see 'telvaro-compositor --help'\n");
    QCOMPARE(compositor.output(), QByteArray());
}

TELVARO_TEST_MAIN(CompositorScriptFileTest)

#include "CompositorScriptFileTest.moc"
