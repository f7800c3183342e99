// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorProcess.h"
#include "TestMain.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTemporaryFile>

#include <stdexcept>

/// An invalid script is rejected before anything is started.
class CompositorScriptFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesAFileThatCannotBeRead();
    void refusesAScriptThatIsWrong_data();
    void refusesAScriptThatIsWrong();
    void acceptsEveryStep_data();
    void acceptsEveryStep();
    /// Of the functions above, whose verdicts it needs.
    void theSchemaAgreesWithAllVerdicts();
    void needsAValue();

private:
    /// Returns why the compositor rejects the script; empty when it does not.
    QByteArray judge(const QByteArray& script);

    QJsonArray mVerdicts;
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
    const QByteArray actions =
        "\"add-view\", \"change-view\", \"order-views\", \"current-view\", \"remove-view\", \"blanking\", "
        "\"set\", \"call\", \"fault\", \"end-fault\", \"service\", "
        "\"freeze\", \"hang\", \"restart\", \"end\", \"tap\", \"click\", \"drag\", \"pointer\", "
        "\"scroll\", \"type\", \"key\"";
    const QByteArray fault = R"("error": "a.b"}}])";
    const QByteArray seconds = "a number of seconds from 0 to 1000000 is expected";

    add("nothing", "", "line 1: not JSON: illegal value");
    add("not JSON", "[\n  {\"at\": 1,,}\n]", "line 2: not JSON: unterminated object");
    add("no list", "{}", "a list of steps is expected");
    add("no step", "[{\"freeze\": 0}, 1]", "step 2: an object is expected");

    add("no action", R"([{"at": 1}])", "step 1: one of " + actions + " is expected");
    add("unknown action", R"([{"explode": 1}])", "step 1: one of " + actions + " is expected, not \"explode\"");
    add("two actions", R"([{"freeze": 1, "service": "gone"}])",
        "step 1: only one of \"service\", \"freeze\" is expected");
    add("unknown key", R"([{"freeze": 1, "until": 3}])",
        "step 1: unknown key \"until\"; the keys here are \"at\", \"after\", \"freeze\"");
    add("negative time", R"([{"at": -0.5, "freeze": 1}])", "step 1, \"at\": " + seconds);
    add("endless time", R"([{"at": 1e9, "freeze": 1}])", "step 1, \"at\": " + seconds);
    add("time as text", R"([{"at": "1", "freeze": 1}])", "step 1, \"at\": " + seconds);
    add("negative freeze", R"([{"freeze": -1}])", "step 1, \"freeze\": " + seconds);

    add("event of nothing", R"([{"after": {}, "freeze": 1}])",
        R"(step 1, "after": one of "call", "get", "set", "interface", "view", "current", "unresponsive", "gone" is expected)");
    add("event as text", R"([{"after": "view", "freeze": 1}])", R"(step 1, "after": an object is expected)");
    add("event after no times", R"([{"after": {"view": "a", "times": 0}, "freeze": 1}])",
        R"(step 1, "after", "times": a whole number from 1 to 2147483647 is expected)");
    add("event after half a time", R"([{"after": {"view": "a", "times": 1.5}, "freeze": 1}])",
        R"(step 1, "after", "times": a whole number from 1 to 2147483647 is expected)");
    add("event with an unknown key", R"([{"after": {"view": "a", "of": 1}, "freeze": 1}])",
        R"(step 1, "after": unknown key "of"; the keys here are "view", "title", "times")");

    add("view as text", R"([{"add-view": "one"}])", R"(step 1, "add-view": an object is expected)");
    add("view without an id", R"([{"add-view": {"appId": "a", "pid": 1}}])",
        R"(step 1, "add-view": "uuid" is missing)");
    add("view with an empty id", R"([{"add-view": {"uuid": "", "appId": "a", "pid": 1}}])",
        R"(step 1, "add-view", "uuid": a text is expected that is not empty)");
    add("view without a process", R"([{"add-view": {"uuid": "u", "appId": "a", "pid": -1}}])",
        R"(step 1, "add-view", "pid": a whole number from 0 to 4294967295 is expected)");
    add("view with an unknown key", R"([{"add-view": {"uuid": "u", "appId": "a", "pid": 1, "name": "n"}}])",
        R"(step 1, "add-view": unknown key "name"; the keys here are "uuid", "appId", "pid", "title", "processName", "attributes", "record")");
    add("view with a list as an attribute",
        R"([{"add-view": {"uuid": "u", "appId": "a", "pid": 1, "attributes": {"x": [1]}}}])",
        R"(step 1, "add-view", "attributes", "x": a text, a number, true or false is expected)");
    add("record as text", R"([{"add-view": {"uuid": "u", "appId": "a", "pid": 1, "record": "r"}}])",
        R"(step 1, "add-view", "record": an object is expected)");
    add("record with an unknown key",
        R"([{"add-view": {"uuid": "u", "appId": "a", "pid": 1, "record": {"info5": "x"}}}])",
        R"(step 1, "add-view", "record": unknown key "info5"; the keys here are "info1", "info2", "info3", "info4", "sortIndex", "attributes")");
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
        R"(step 1, "fault": unknown key "text"; the keys here are "get", "silent", "error", "delay", "seconds", "times")");
    add("error without a dot", orientation + R"(, "error": "Broken"}}])",
        R"(step 1, "fault", "error": "Broken" is not the name of a D-Bus error)");
    add("negative delay", orientation + R"(, "delay": -1}}])", "step 1, \"fault\", \"delay\": " + seconds);
    add("negative lifetime", orientation + R"(, "seconds": -1, )" + fault,
        "step 1, \"fault\", \"seconds\": " + seconds);
    add("fault for no call", orientation + R"(, "times": 0, )" + fault,
        R"(step 1, "fault", "times": a whole number from 1 to 2147483647 is expected)");
    add("end of a fault with an answer", R"([{"end-fault": {"get": "de.Telvaro.screen.orientation", )" + fault,
        R"(step 1, "end-fault": unknown key "error"; the keys here are "get")");
    const QByteArray decimal = "a number from -1000000 to 1000000 is expected";
    const QByteArray secondsOfInput = "a number of seconds from 0 to 60 is expected";
    const QByteArray point = "a list of two numbers, x and y, is expected";
    add("event of a title alone", R"([{"after": {"title": "a"}, "freeze": 1}])",
        R"(step 1, "after": one of "call", "get", "set", "interface", "view", "current", "unresponsive", "gone" is expected, not "title")");
    add("event of a call with a title",
        R"([{"after": {"get": "de.Telvaro.screen.orientation", "title": "a"}, "end": 1}])",
        R"(step 1, "after": unknown key "title"; the keys here are "get", "times")");
    add("hang of nothing", R"([{"hang": {"seconds": 1}}])", R"(step 1, "hang": "view" is missing)");
    add("hang for a negative time", R"([{"hang": {"view": "a", "seconds": -1}}])",
        "step 1, \"hang\", \"seconds\": " + seconds);
    add("hang with an unknown key", R"([{"hang": {"view": "a", "for": 1}}])",
        R"(step 1, "hang": unknown key "for"; the keys here are "view", "seconds")");
    add("restart without a time", R"([{"restart": true}])", "step 1, \"restart\": " + seconds);
    add("status that is none", R"([{"end": 256}])", R"(step 1, "end": a whole number from 0 to 255 is expected)");
    add("status as text", R"([{"end": "1"}])", R"(step 1, "end": a whole number from 0 to 255 is expected)");
    add("tap of nothing", R"([{"tap": {}}])", R"(step 1, "tap": "x" is missing)");
    add("tap with a text as position", R"([{"tap": {"x": "1", "y": 1}}])", "step 1, \"tap\", \"x\": " + decimal);
    add("tap far away", R"([{"tap": {"x": 1, "y": 1e7}}])", "step 1, \"tap\", \"y\": " + decimal);
    add("tap for too long", R"([{"tap": {"x": 1, "y": 1, "seconds": 61}}])",
        "step 1, \"tap\", \"seconds\": " + secondsOfInput);
    add("tap in an unknown space", R"([{"tap": {"x": 1, "y": 1, "in": "window"}}])",
        R"(step 1, "tap", "in": "output" or "view" is expected)");
    add("tap with a button", R"([{"tap": {"x": 1, "y": 1, "button": "left"}}])",
        R"(step 1, "tap": unknown key "button"; the keys here are "x", "y", "seconds", "in")");
    add("click with an unknown button", R"([{"click": {"x": 1, "y": 1, "button": "back"}}])",
        R"(step 1, "click", "button": "left" or "right" or "middle" is expected)");
    add("drag from nowhere", R"([{"drag": {"to": [1, 1]}}])", R"(step 1, "drag": "from" is missing)");
    add("drag to a number", R"([{"drag": {"from": [1, 1], "to": 1}}])", "step 1, \"drag\", \"to\": " + point);
    add("drag with three numbers", R"([{"drag": {"from": [1, 1, 1], "to": [1, 1]}}])",
        "step 1, \"drag\", \"from\": " + point);
    add("drag with texts", R"([{"drag": {"from": ["1", 1], "to": [1, 1]}}])", "step 1, \"drag\", \"from\": " + decimal);
    add("drag with an unknown device", R"([{"drag": {"from": [1, 1], "to": [1, 1], "with": "pen"}}])",
        R"(step 1, "drag", "with": "finger" or "pointer" is expected)");
    add("pointer with seconds", R"([{"pointer": {"x": 1, "y": 1, "seconds": 1}}])",
        R"(step 1, "pointer": unknown key "seconds"; the keys here are "x", "y", "in")");
    add("scroll of nothing", R"([{"scroll": {"x": 1, "y": 1}}])",
        R"(step 1, "scroll": steps "down" or "right" are expected, negative ones for the other way)");
    add("scroll by half a step", R"([{"scroll": {"x": 1, "y": 1, "down": 0.5}}])",
        R"(step 1, "scroll", "down": a whole number from -1000 to 1000 is expected)");
    add("text that is empty", R"([{"type": ""}])", R"(step 1, "type": a text is expected that is not empty)");
    add("text that is a number", R"([{"type": 1}])", R"(step 1, "type": a text is expected that is not empty)");
    add("text without keys", R"([{"type": "\u4e2d"}])",
        "step 1, \"type\": the keyboard layout has no key for \"\u4e2d\"");
    add("key without a name", R"([{"key": ""}])", R"(step 1, "key": a text is expected that is not empty)");
    add("key with an unknown name", R"([{"key": "Ctrl+Any"}])",
        R"(step 1, "key": the keyboard layout has no key "Any")");
    add("key with a wrong modifier", R"([{"key": {"press": "F1+F2"}}])",
        R"(step 1, "key", "press": "F1" is not a modifier: one of Ctrl, Alt, Shift, AltGr, Super is expected before a "+")");
    add("key without an action", R"([{"key": {"seconds": 1}}])",
        R"(step 1, "key": one of "press", "release", "hold" is expected, not "seconds")");
    add("key with two actions", R"([{"key": {"press": "a", "release": "a"}}])",
        R"(step 1, "key": only one of "press", "release" is expected)");
    add("key held for no time", R"([{"key": {"hold": "a"}}])", R"(step 1, "key": "seconds" is missing)");
    add("key pressed for a time", R"([{"key": {"press": "a", "seconds": 1}}])",
        R"(step 1, "key": unknown key "seconds"; the keys here are "press")");

    add("unknown state of the service", R"([{"service": "away"}])",
        R"(step 1, "service": "gone" or "back" is expected)");
}

QByteArray CompositorScriptFileTest::judge(const QByteArray& script)
{
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("script.json")));
    if (!file.open(QIODevice::WriteOnly) || file.write(script) != script.size()) {
        throw std::runtime_error("cannot write " + file.fileName().toStdString());
    }
    file.close();

    // Without a display or a bus the compositor could not start anyway.
    CompositorProcess compositor;
    compositor.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("none"));
    compositor.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/dev/null"));
    const bool isRejected = compositor.runToEnd({QStringLiteral("--script=") + file.fileName()}) == 2;
    const QByteArray beginning = "telvaro-compositor: " + file.fileName().toLocal8Bit() + ": ";
    const QByteArray end = "\ntelvaro-compositor: see 'telvaro-compositor --help'\n";
    const QByteArray errors = compositor.errors();
    if (isRejected != (errors.startsWith(beginning) && errors.endsWith(end)) || !compositor.output().isEmpty()) {
        throw std::runtime_error("unexpected: " + errors.toStdString());
    }
    const QByteArray reason = isRejected ? errors.mid(beginning.size()).chopped(end.size()) : QByteArray();
    mVerdicts.append(QJsonObject{{QStringLiteral("script"), QString::fromUtf8(script)},
                                 {QStringLiteral("reason"), QString::fromUtf8(reason)}});
    return reason;
}

void CompositorScriptFileTest::refusesAScriptThatIsWrong()
{
    QFETCH(QByteArray, script);
    QFETCH(QByteArray, reason);
    QCOMPARE(judge(script), reason);
}

void CompositorScriptFileTest::acceptsEveryStep_data()
{
    QTest::addColumn<QByteArray>("step");
    for (const char* const step : {
             R"({"add-view": {"uuid": "u", "appId": "a", "pid": 4294967295}})",
             R"({"add-view": {"uuid": "u", "appId": "a", "pid": 0, "title": "t", "processName": "p",
                 "attributes": {"a": 1, "b": "c", "d": 0.5, "e": true},
                 "record": {"info1": "", "info2": "", "info3": "", "info4": "", "sortIndex": 3, "attributes": {}}}})",
             R"({"change-view": {"uuid": "u", "appId": "a", "pid": 1, "title": "t", "processName": "p",
                 "attributes": {}, "record": {}}})",
             R"({"order-views": ["u", "v"]})",
             R"({"current-view": ""})",
             R"({"remove-view": "u"})",
             R"({"blanking": "scripted"})",
             R"({"set": {"de.Telvaro.taskswitcher.currentView": "u"}})",
             R"({"set": {"de.Telvaro.screen.screenSaverActive": true}})",
             R"({"set": {"de.Telvaro.screen.screenSaverEnabled": false}})",
             R"({"set": {"de.Telvaro.screen.screenSaverTimeoutSeconds": 1.0}})",
             R"({"set": {"de.Telvaro.screen.orientation": ""}})",
             R"({"set": {"de.Telvaro.screen.fullScreen": true}})",
             R"({"call": {"de.Telvaro.globaloverlay.Show": [""]}})",
             R"({"call": {"de.Telvaro.globaloverlay.Hide": []}})",
             R"({"call": {"de.Telvaro.screenshot.ScreenShot": ["/"]}})",
             R"({"call": {"org.freedesktop.Notifications.Notify": ["", 0, "", "", "", ["a", ""], {"x": true}, -1]}})",
             R"({"call": {"org.freedesktop.Notifications.CloseNotification": [1]}})",
             R"({"call": {"org.freedesktop.Notifications.GetCapabilities": []}})",
             R"({"call": {"org.freedesktop.Notifications.GetServerInformation": []}})",
             R"({"fault": {"call": "de.Telvaro.globaloverlay.Show", "silent": true, "seconds": 1}})",
             R"({"fault": {"get": "de.Telvaro.taskswitcher.views", "error": "a.b", "text": "t", "delay": 0.5,
                 "silent": false, "seconds": 0, "times": 1}})",
             R"({"fault": {"set": "de.Telvaro.screen.orientation", "error": "a.b"}})",
             R"({"fault": {"interface": "org.freedesktop.Notifications", "delay": 1000000}})",
             R"({"end-fault": {"call": "org.freedesktop.Notifications.Notify"}})",
             R"({"end-fault": {"get": "de.Telvaro.screen.screenSaverActive"}})",
             R"({"end-fault": {"set": "de.Telvaro.taskswitcher.currentView"}})",
             R"({"end-fault": {"interface": "de.Telvaro.screen"}})",
             R"({"service": "gone"})",
             R"({"service": "back"})",
             R"({"at": 0.5, "freeze": 1})",
             R"({"after": {"call": "de.Telvaro.globaloverlay.Show", "times": 2}, "freeze": 1})",
             R"({"after": {"get": "de.Telvaro.taskswitcher.views"}, "freeze": 1})",
             R"({"after": {"set": "de.Telvaro.screen.fullScreen"}, "freeze": 1})",
             R"({"after": {"interface": "de.Telvaro.screenshot"}, "freeze": 1})",
             R"({"after": {"view": "a", "title": "t", "times": 2}, "freeze": 1})",
             R"({"after": {"current": "a"}, "freeze": 1})",
             R"({"after": {"unresponsive": "a"}, "freeze": 1})",
             R"({"after": {"gone": "a"}, "at": 1, "freeze": 1})",
             R"({"hang": {"view": "a"}})",
             R"({"hang": {"view": "a", "seconds": 1}})",
             R"({"restart": 0})",
             R"({"end": 255})",
             R"({"tap": {"x": 1, "y": -1.5, "in": "view", "seconds": 60}})",
             R"({"click": {"x": 1, "y": 1, "button": "middle", "seconds": 0, "in": "output"}})",
             R"({"drag": {"from": [0, 0], "to": [1.5, 2], "with": "pointer", "seconds": 1, "in": "view"}})",
             R"({"pointer": {"x": 1, "y": 1, "in": "view"}})",
             R"({"scroll": {"x": 1, "y": 1, "down": -1000, "right": 1, "in": "view"}})",
             R"({"scroll": {"x": 1, "y": 1, "down": 0, "right": 1}})",
             R"({"type": "Hello"})",
             R"({"key": "Ctrl+Alt+Right"})",
             R"({"key": {"press": "Shift"}})",
             R"({"key": {"release": "Shift"}})",
             R"({"key": {"hold": "F1", "seconds": 1}})",
         }) {
        QTest::newRow(QByteArray(step).simplified().constData()) << QByteArray(step);
    }
}

void CompositorScriptFileTest::acceptsEveryStep()
{
    QFETCH(QByteArray, step);
    QCOMPARE(judge('[' + step + ']'), QByteArray());
    // No object in it may have another key, but for those whose keys are free.
    const QByteArray probe = R"("no-such-key": 0)";
    for (int i = step.indexOf('{'); i >= 0; i = step.indexOf('{', i + 1)) {
        const bool isEmpty = step.mid(i + 1).trimmed().startsWith('}');
        QByteArray probed = step;
        probed.insert(i + 1, isEmpty ? probe : probe + ", ");
        judge('[' + probed + ']');
    }
}

void CompositorScriptFileTest::theSchemaAgreesWithAllVerdicts()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(QJsonDocument(mVerdicts).toJson());
    file.close();
    QProcess checker;
    checker.setProcessChannelMode(QProcess::MergedChannels);
    checker.start(QStringLiteral(TELVARO_CHECK_SCHEMA), {QStringLiteral(TELVARO_SCRIPT_SCHEMA), file.fileName()});
    QVERIFY(checker.waitForFinished(ChildProcess::cDeadline));
    const QByteArray problems = checker.readAll();
    QVERIFY2(checker.exitStatus() == QProcess::NormalExit && checker.exitCode() == 0, problems.constData());
}

TELVARO_TEST_MAIN(CompositorScriptFileTest)

#include "CompositorScriptFileTest.moc"
