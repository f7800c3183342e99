// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QCryptographicHash>
#include <QDBusVariant>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <initializer_list>
#include <stdexcept>

using TaskSwitcherEntry = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

namespace {

const int cMebibyte = 1024 * 1024;
const int cLongestSent = 64 * cMebibyte;
/// An array is limited to 64 MiB, including four bytes for the string's length and one for its terminator.
const int cLongestAction = 64 * cMebibyte - 5;
/// Above 63 MiB libdbus stops reading until the message is freed, and Qt sometimes misses that.
const int cLongestReceived = 32 * cMebibyte;
/// Variants in each other in an attribute, where D-Bus allows 64 containers: the array, the structure, the dictionary,
/// its entry and the reply's variant are five of them.
const int cDeepest = 59;

struct Text
{
    const char* name;
    QString value;
    /// The text as the service receives it, printed by GVariant.
    QString sent;
    /// The text as read back from the service; null if it cannot be transferred.
    QString received;
};

// Long texts are compared by their digests.
QString digest(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    return QStringLiteral("%1 bytes with SHA-256 %2")
        .arg(bytes.size())
        .arg(QLatin1String(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex()));
}

QList<Text> texts(int longest)
{
    const auto text = [](std::initializer_list<ushort> units) {
        QString value;
        for (const ushort unit : units) {
            value.append(QChar(unit));
        }
        return value;
    };
    const QString nonCharacters = text({0xfffe, 0xffff, 0xfdd0, 0xdbff, 0xdfff});
    QList<Text> all{
        {"nothing", QString(), QStringLiteral("''"), QStringLiteral("")},
        {"an embedded NUL", text({'a', 0, 'b'}), QStringLiteral("'a'"), QStringLiteral("a")},
        {"a lone high surrogate", text({'a', 0xd800, 'b'}), QStringLiteral("'a?b'"), QStringLiteral("a?b")},
        {"a lone low surrogate", text({0xdc00, 'b'}), QStringLiteral("'?b'"), QStringLiteral("?b")},
        {"non-characters", nonCharacters, QStringLiteral("'\\ufffe\\uffff\\ufdd0\\U0010ffff'"), nonCharacters},
        {"a byte order mark", text({0xfeff, 'a'}), QStringLiteral("'\\ufeffa'"), QStringLiteral("a")},
        {"right to left", QString::fromUtf8("\u202e\u05e9\u05dc\u05d5\u05dd \u0645\u0631\u062d\u0628\u0627\u202c"),
         QString::fromUtf8("'\\u202e\u05e9\u05dc\u05d5\u05dd \u0645\u0631\u062d\u0628\u0627\\u202c'"),
         QString::fromUtf8("\u202e\u05e9\u05dc\u05d5\u05dd \u0645\u0631\u062d\u0628\u0627\u202c")},
        {"quotes and control characters", QStringLiteral("'\"\\\n\t\u0001"),
         QStringLiteral("\"'\\\"\\\\\\n\\t\\u0001\""), QStringLiteral("'\"\\\n\t\u0001")},
        {"outside the basic plane", QString::fromUtf8("\U0001F600"), QString::fromUtf8("'\U0001F600'"),
         QString::fromUtf8("\U0001F600")},
    };
    for (const int size : {cMebibyte, longest}) {
        const QString value(size, QLatin1Char('x'));
        all.append({size == longest ? "very long" : "long", value, digest(value), value});
    }
    return all;
}

} // namespace

/// Texts of every kind and size through every operation with texts, and large collections.
class StringTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void everyTextIsSent_data();
    void everyTextIsSent();
    void everyTextIsReceived_data();
    void everyTextIsReceived();
    void everyTextIsLookedUpAsAProcess_data();
    void everyTextIsLookedUpAsAProcess();
    void directoriesOfAnyNameAreSent();
    void aHundredThousandAttributesAreRead();
    void fiftyThousandViewsAreRead();
    void attributesMayBeNestedAsDeepAsTheBusAllows();
    void cleanupTestCase();

private:
    void addTexts(int longest);
    QString takeCall();

    QStringList mFigures;
};

void StringTest::addTexts(int longest)
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QString>("received");
    for (const Text& text : texts(longest)) {
        QTest::addRow("%s", text.name) << text.value << text.sent << text.received;
    }
}

QString StringTest::takeCall()
{
    const QList<RecordedCall> calls = mService.takeCalls();
    return calls.size() == 1 ? calls.first().arguments.join(QStringLiteral(", "))
                             : QStringLiteral("%1 calls").arg(calls.size());
}

void StringTest::everyTextIsSent_data()
{
    addTexts(cLongestSent);
}

void StringTest::everyTextIsSent()
{
    QFETCH(QString, value);
    QFETCH(QString, sent);
    Operations operations;
    operations.prepare();
    mService.takeCalls();
    const QString screen = QStringLiteral("'de.Telvaro.screen', ");

    operations.overlay().showGlobalOverlay(value);
    QCOMPARE(takeCall(), sent);

    operations.screen().setOrientation(value);
    QCOMPARE(takeCall(), screen + QStringLiteral("'orientation', <%1>").arg(sent));
    operations.screen().setProperty(QStringLiteral("orientation"), QDBusVariant(value));
    QCOMPARE(takeCall(), screen + QStringLiteral("'orientation', <%1>").arg(sent));
    operations.screen().setProperty(value, QDBusVariant(true));
    QCOMPARE(takeCall(), screen + QStringLiteral("%1, <true>").arg(sent));
    QCOMPARE(operations.screen().getProperty(value), QVariant());
    QCOMPARE(takeCall(), screen + sent);
    const QStringList log = mLog->takeTexts();
    QCOMPARE(log.size(), 1);
    QVERIFY(log.first().startsWith(QLatin1String("Unable to read property:  \"")));

    TaskSwitcherEntry entry;
    entry.uuid = value;
    QCOMPARE(operations.taskSwitcher().setCurrentView(entry).isValid(), value.isEmpty());
    QCOMPARE(takeCall(),
             value.isEmpty() ? QStringLiteral("0 calls")
                             : QStringLiteral("'de.Telvaro.taskswitcher', 'currentView', <%1>").arg(sent));

    QCOMPARE(operations.taskSwitcher().idsToTaskSwitcherEntry(value, 2).uuid, QString());
    QVERIFY(!operations.taskSwitcher().switchToView(value, 2));
    QCOMPARE(mService.takeCalls().size(), 2);
    QCOMPARE(
        mLog->takeTexts().last(),
        QStringLiteral(
            "switch view failed QDBusError(\"org.freedesktop.DBus.Error.InvalidArgs\", \"uuid should not be empty\")"));

    const QString notification = QStringLiteral("'', uint32 0, %1, @as [], {'action-icons': <true>}, 0");
    operations.notification().notify(value, {}, {}, {});
    QCOMPARE(takeCall(), notification.arg(sent + QStringLiteral(", '', ''")));
    operations.notification().notify({}, value, {}, {});
    QCOMPARE(takeCall(), notification.arg(QStringLiteral("'', %1, ''").arg(sent)));
    operations.notification().notify({}, {}, value, {});
    QCOMPARE(takeCall(), notification.arg(QStringLiteral("'', '', ") + sent));
    const QString actions = QStringLiteral("'', uint32 0, '', '', '', [%1], {'action-icons': <true>}, 0");
    if (value.size() < cLongestSent) {
        operations.notification().notify({}, {}, {}, {value, value});
        QCOMPARE(takeCall(), actions.arg(sent + QStringLiteral(", ") + sent));
    } else {
        const QString longest = value.left(cLongestAction);
        operations.notification().notify({}, {}, {}, {longest});
        QCOMPARE(takeCall(), actions.arg(digest(longest)));
    }
}

void StringTest::everyTextIsReceived_data()
{
    addTexts(cLongestReceived);
}

void StringTest::everyTextIsReceived()
{
    QFETCH(QString, value);
    QFETCH(QString, sent);
    QFETCH(QString, received);
    // The service sends the form that it would have received.
    const QString inService =
        value.size() < cMebibyte ? sent : QStringLiteral("'%1' * %2").arg(value.front()).arg(value.size());
    Operations operations;
    operations.prepare();
    mService.setProperty(QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"), QStringLiteral("orientation"),
                         inService);
    QVERIFY(operations.screen().getOrientation() == received);
    QVERIFY(operations.screen().getProperty(QStringLiteral("orientation")) == received);

    mService.script(QStringLiteral("/screenshot"), QStringLiteral("de.Telvaro.screenshot"),
                    QStringLiteral("ScreenShot"), {Behaviour::reply({inService})});
    QVERIFY(operations.screenShot().captureScreenShot(QStringLiteral("/")) == received);

    TelvaroTaskSwitcherDBusConnector& taskSwitcher = operations.taskSwitcher();
    const QString views = QStringLiteral("@a(ssssssuua{sv}) [%1]");
    mService.setViews(views.arg(QStringLiteral("('uuid', %1, '', '', '', '', 1, 2, {})").arg(inService)));
    QCOMPARE(taskSwitcher.idsToTaskSwitcherEntry(received, 2).uuid, QStringLiteral("uuid"));
    mService.takeCalls();
    QVERIFY(taskSwitcher.switchToView(received, 2));
    QVERIFY(mService.takeDescriptions().last().endsWith(QLatin1String("'currentView', <'uuid'>)")));

    mService.setViews(views.arg(QStringLiteral("(%1, 'app', '', '', '', '', 1, 2, {})").arg(inService)));
    QVERIFY(taskSwitcher.idsToTaskSwitcherEntry(QStringLiteral("app"), 2).uuid == received);
    mService.takeCalls();
    QCOMPARE(taskSwitcher.switchToView(QStringLiteral("app"), 2), !received.isEmpty());
    // An empty uuid is refused.
    QCOMPARE(mService.takeCalls().size(), received.isEmpty() ? 1 : 2);
    QCOMPARE(mLog->takeTexts().size(), received.isEmpty() ? 1 : 0);
    if (value.size() >= cMebibyte) {
        return;
    }

    mService.setViews(views.arg(QStringLiteral("(%1, %1, %1, %1, %1, %1, 1, 2, {%1: <%1>})").arg(inService)));
    mService.setProperty(QStringLiteral("/taskswitcher"), QStringLiteral("de.Telvaro.taskswitcher"),
                         QStringLiteral("currentView"), inService);
    const TaskSwitcherEntry entry = taskSwitcher.getCurrentView();
    for (const QString& member : {entry.uuid, entry.appId, entry.info1, entry.info2, entry.info3, entry.info4}) {
        QVERIFY(member == received);
    }
    QVERIFY(entry.attributes == (QVariantMap{{received, received}}));
    QCOMPARE(entry.pid, 1U);
}

void StringTest::everyTextIsLookedUpAsAProcess_data()
{
    addTexts(cLongestSent);
}

void StringTest::everyTextIsLookedUpAsAProcess()
{
    QFETCH(QString, value);
    Operations operations;
    operations.prepare();
    QCOMPARE(operations.taskSwitcher().processNameToPid(value), UINT32_MAX);
    operations.taskSwitcher().surfaceToTop(value);
    QVERIFY(!operations.taskSwitcher().isCurrentView(value));
    const QStringList log = mLog->takeTexts();
    QCOMPARE(log.size(), 5);
    for (int index : {0, 1, 3}) {
        QVERIFY(log.at(index).startsWith(QLatin1String("Unable to find process with name \"")));
    }
}

void StringTest::directoriesOfAnyNameAreSent()
{
    const QTemporaryDir parent;
    Operations operations;
    operations.prepare();
    mService.takeCalls();
    int found = 0;
    for (const Text& text : texts(cMebibyte)) {
        const QString path = parent.filePath(text.value);
        const bool exists = !text.value.isEmpty() && text.value.size() < 200 && QDir(parent.path()).mkdir(text.value)
            && QDir(path).exists();
        const auto result = operations.screenShot().captureScreenShot(path);
        if (exists || text.value.isEmpty()) {
            QCOMPARE(result, std::optional<QString>(QStringLiteral("/shots/1.png")));
            QCOMPARE(mLog->takeTexts(), QStringList());
            // GVariant prints single or double quotes.
            const QString folder = parent.path() + (text.value.isEmpty() ? QString() : QStringLiteral("/"));
            QCOMPARE(takeCall(), QString(text.sent).insert(1, folder));
            ++found;
        } else {
            QVERIFY(!result);
            // Qt may have warned of a NUL in the path.
            QVERIFY(mLog->takeTexts().last().startsWith(
                QLatin1String("Unable to capture screenshot, store directory does not exists \"")));
            QCOMPARE(mService.takeCalls().size(), 0);
        }
    }
    // At least the empty, right-to-left, quoted and non-BMP texts.
    QVERIFY(found >= 4);
}

void StringTest::aHundredThousandAttributesAreRead()
{
    const int count = 100000;
    QStringList attributes;
    for (int index = 0; index < count; ++index) {
        attributes.append(QStringLiteral("'key%1': <%1>").arg(index));
    }
    mService.setViews(QStringLiteral("@a(ssssssuua{sv}) [('a', '', '', '', '', '', 1, 2, {%1})]")
                          .arg(attributes.join(QStringLiteral(", "))));
    TelvaroTaskSwitcherDBusConnector taskSwitcher;
    QElapsedTimer timer;
    timer.start();
    const QList<TaskSwitcherEntry> views = taskSwitcher.getViews();
    mFigures.append(QStringLiteral("%1 attributes in %2 ms").arg(count).arg(timer.elapsed()));
    QCOMPARE(views.size(), 1);
    QCOMPARE(views.first().attributes.size(), count);
    QCOMPARE(views.first().attributes.value(QStringLiteral("key99999")), QVariant(99999));
}

void StringTest::fiftyThousandViewsAreRead()
{
    const int count = 50000;
    QList<TaskSwitcherEntry> entries;
    for (int index = 0; index < count; ++index) {
        TaskSwitcherEntry entry;
        entry.uuid = QString::number(index);
        entry.appId = QStringLiteral("app");
        entry.pid = static_cast<uint32_t>(index);
        entry.sortIndex = static_cast<uint32_t>(count - index);
        entries.append(entry);
    }
    mService.setViews(ValueText::views(entries));
    mService.setCurrentView(QStringLiteral("0"));
    TelvaroTaskSwitcherDBusConnector taskSwitcher;
    QElapsedTimer timer;
    timer.start();
    const QList<TaskSwitcherEntry> views = taskSwitcher.getViews();
    mFigures.append(QStringLiteral("%1 views in %2 ms").arg(count).arg(timer.elapsed()));
    QCOMPARE(views.size(), count);
    QCOMPARE(views.last().uuid, QStringLiteral("49999"));
    QCOMPARE(taskSwitcher.pidToTaskSwitcherEntry(49999).uuid, QStringLiteral("49999"));
    mService.takeCalls();
    QVERIFY(taskSwitcher.iterateViews(false));
    QVERIFY(mService.takeDescriptions().last().endsWith(QLatin1String("'currentView', <'49999'>)")));
}

void StringTest::attributesMayBeNestedAsDeepAsTheBusAllows()
{
    int deepest = 0;
    for (int depth = 1; depth <= 80 && mService.isRunning(); ++depth) {
        const QString value =
            QString(depth, QLatin1Char('<')) + QStringLiteral("'x'") + QString(depth, QLatin1Char('>'));
        TelvaroTaskSwitcherDBusConnector taskSwitcher;
        try {
            mService.setViews(
                QStringLiteral("@a(ssssssuua{sv}) [('a', '', '', '', '', '', 1, 2, {'k': %1})]").arg(value));
        } catch (const std::runtime_error&) {
            break;
        }
        const QList<TaskSwitcherEntry> views = taskSwitcher.getViews();
        if (views.isEmpty()) {
            // The bus has disconnected the service.
            QCOMPARE(mLog->takeTexts(), QStringList{QStringLiteral("Unable to read views!")});
            mService.kill();
            break;
        }
        QVariant content = views.first().attributes.value(QStringLiteral("k"));
        for (int level = 1; level < depth; ++level) {
            QCOMPARE(content.userType(), qMetaTypeId<QDBusVariant>());
            content = content.value<QDBusVariant>().variant();
        }
        QCOMPARE(content, QVariant(QStringLiteral("x")));
        deepest = depth;
    }
    mFigures.append(QStringLiteral("attributes of %1 nested variants").arg(deepest));
    QCOMPARE(deepest, cDeepest);
}

void StringTest::cleanupTestCase()
{
    qInfo("%s", qPrintable(mFigures.join(QStringLiteral("; "))));
}

TELVARO_TEST_MAIN(StringTest)

#include "StringTest.moc"
