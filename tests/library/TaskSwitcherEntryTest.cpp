// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PrivateBus.h"
#include "TaskSwitcherFixture.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>

#include <algorithm>
#include <iterator>
#include <new>
#include <type_traits>

namespace {

const QString cPath = QStringLiteral("/echo");
const QString cInterface = QStringLiteral("org.example.Echo");
const QString cTakeMember = QStringLiteral("Take");
const QString cGiveMember = QStringLiteral("Give");

QDBusMessage call(const QString& member, const QVariantList& arguments = {})
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), cPath, cInterface, member);
    message.setArguments(arguments);
    return PrivateBus::connection().call(message);
}

TaskSwitcherEntry fullView()
{
    TaskSwitcherEntry entry;
    entry.uuid = QStringLiteral("the uuid");
    entry.appId = QStringLiteral("the application");
    entry.info1 = QStringLiteral("first");
    entry.info2 = QStringLiteral("second");
    entry.info3 = QStringLiteral("third");
    entry.info4 = QStringLiteral("fourth");
    entry.pid = 4294967295;
    entry.sortIndex = 2147483648;
    entry.attributes = {{QStringLiteral("zebra"), QStringLiteral("last")},
                        {QStringLiteral("Alpha"), QStringLiteral("first")},
                        {QStringLiteral("mid"), QStringLiteral("between")}};
    return entry;
}

const QString cFullViewText = QStringLiteral(
    "('the uuid', 'the application', 'first', 'second', 'third', 'fourth', uint32 4294967295, uint32 2147483648, "
    "{'Alpha': <'first'>, 'mid': <'between'>, 'zebra': <'last'>})");

} // namespace

class TaskSwitcherEntryTest : public TaskSwitcherFixture
{
    Q_OBJECT

private Q_SLOTS:
    void isRegisteredByTheConnectorAndNowhereElse();
    void theRegisteredTypeHasItsNameAndFlags();
    void theListIsNotRegistered();
    void anEntryWithoutInitialiserIsEmpty();
    void anEntryIsAValue();
    void isWrittenMemberByMember();
    void anEmptyEntryIsWrittenWithItsTypes();
    void attributesAreWrittenInAscendingOrderAsVariants();
    void isReadMemberByMember();
    void readingReplacesEveryMember();
    void aKeyThatComesTwiceKeepsBothValues();
    void containersStayUnparsed();
    void attributesOfEveryTypeAreCarriedUnchanged_data();
    void attributesOfEveryTypeAreCarriedUnchanged();
    void textsAreCarriedUnchanged_data();
    void textsAreCarriedUnchanged();
    void anArrayIsReadInItsOrderWithDuplicates();
    void readingAnArrayEmptiesTheListFirst();
    void theOperatorsReturnTheirArgument();

private:
    QDBusArgument receive(const QString& valueText);
    QString send(const TaskSwitcherEntry& entry);
};

QDBusArgument TaskSwitcherEntryTest::receive(const QString& valueText)
{
    mService.script(cPath, cInterface, cGiveMember, {Behaviour::reply({valueText})});
    return call(cGiveMember).arguments().value(0).value<QDBusArgument>();
}

QString TaskSwitcherEntryTest::send(const TaskSwitcherEntry& entry)
{
    mService.script(cPath, cInterface, cTakeMember, {Behaviour::reply()});
    mService.takeCalls();
    call(cTakeMember, {QVariant::fromValue(entry)});
    return mService.takeDescriptions().join(QLatin1Char('\n'));
}

void TaskSwitcherEntryTest::isRegisteredByTheConnectorAndNowhereElse()
{
    const char name[] = "TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry";
    QCOMPARE(QMetaType::type(name), int(QMetaType::UnknownType));

    TelvaroTaskSwitcherDBusConnector first;
    const int type = QMetaType::type(name);
    QVERIFY(type != QMetaType::UnknownType);
    QCOMPARE(QDBusMetaType::typeToSignature(type), "(ssssssuua{sv})");

    TelvaroTaskSwitcherDBusConnector second;
    QCOMPARE(QMetaType::type(name), type);
    QCOMPARE(QDBusMetaType::typeToSignature(type), "(ssssssuua{sv})");
}

void TaskSwitcherEntryTest::theRegisteredTypeHasItsNameAndFlags()
{
    const int type = qMetaTypeId<TaskSwitcherEntry>();
    QCOMPARE(QMetaType::typeName(type), "TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry");
    QCOMPARE(QMetaType::typeFlags(type),
             QMetaType::NeedsConstruction | QMetaType::NeedsDestruction
                 | QMetaType::TypeFlags(QMetaType::WasDeclaredAsMetaType));
    QVERIFY(QTypeInfo<TaskSwitcherEntry>::isComplex);
    QVERIFY(QTypeInfo<TaskSwitcherEntry>::isStatic);
}

void TaskSwitcherEntryTest::theListIsNotRegistered()
{
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(QMetaType::type("QList<TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry>"),
             int(QMetaType::UnknownType));
}

void TaskSwitcherEntryTest::anEntryWithoutInitialiserIsEmpty()
{
    alignas(TaskSwitcherEntry) unsigned char memory[sizeof(TaskSwitcherEntry)];
    std::fill(std::begin(memory), std::end(memory), static_cast<unsigned char>(0xff));
    // Default-initialised, not value-initialised.
    TaskSwitcherEntry* const entry = new (memory) TaskSwitcherEntry;
    QVERIFY(isEmpty(*entry));
    QVERIFY(entry->uuid.isNull());
    QVERIFY(entry->info4.isNull());
    entry->~TaskSwitcherEntry();
}

void TaskSwitcherEntryTest::anEntryIsAValue()
{
    QVERIFY(std::is_copy_constructible_v<TaskSwitcherEntry>);
    QVERIFY(std::is_copy_assignable_v<TaskSwitcherEntry>);
    QVERIFY(std::is_nothrow_move_constructible_v<TaskSwitcherEntry>);
    QVERIFY((std::is_same_v<decltype(TaskSwitcherEntry::pid), std::uint32_t>));
    QVERIFY((std::is_same_v<decltype(TaskSwitcherEntry::sortIndex), std::uint32_t>));
    const TaskSwitcherEntry original = fullView();
    TaskSwitcherEntry copy = original;
    copy.uuid = QStringLiteral("another");
    copy.attributes.clear();
    QCOMPARE(original.uuid, QStringLiteral("the uuid"));
    QCOMPARE(original.attributes.size(), 3);
}

void TaskSwitcherEntryTest::isWrittenMemberByMember()
{
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(send(fullView()), QStringLiteral("/echo org.example.Echo.Take (ssssssuua{sv})(%1)").arg(cFullViewText));
}

void TaskSwitcherEntryTest::anEmptyEntryIsWrittenWithItsTypes()
{
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(send({}),
             QStringLiteral("/echo org.example.Echo.Take (ssssssuua{sv})"
                            "(('', '', '', '', '', '', uint32 0, uint32 0, @a{sv} {}))"));
}

void TaskSwitcherEntryTest::attributesAreWrittenInAscendingOrderAsVariants()
{
    const TelvaroTaskSwitcherDBusConnector connector;
    TaskSwitcherEntry entry;
    entry.attributes = {{QStringLiteral("d"), 0.5},
                        {QStringLiteral("b"), true},
                        {QStringLiteral("e"), QStringList{QStringLiteral("x"), QStringLiteral("y")}},
                        {QStringLiteral("c"), QVariantMap{{QStringLiteral("in"), 7}}},
                        {QStringLiteral("a"), QVariant::fromValue(QDBusVariant(3u))}};
    QCOMPARE(send(entry),
             QStringLiteral("/echo org.example.Echo.Take (ssssssuua{sv})"
                            "(('', '', '', '', '', '', uint32 0, uint32 0, "
                            "{'a': <<uint32 3>>, 'b': <true>, 'c': <{'in': <7>}>, 'd': <0.5>, 'e': <['x', 'y']>}))"));
}

void TaskSwitcherEntryTest::isReadMemberByMember()
{
    TaskSwitcherEntry entry;
    receive(cFullViewText) >> entry;
    QCOMPARE(entry.uuid, QStringLiteral("the uuid"));
    QCOMPARE(entry.appId, QStringLiteral("the application"));
    QCOMPARE(entry.info1, QStringLiteral("first"));
    QCOMPARE(entry.info2, QStringLiteral("second"));
    QCOMPARE(entry.info3, QStringLiteral("third"));
    QCOMPARE(entry.info4, QStringLiteral("fourth"));
    QCOMPARE(entry.pid, 4294967295u);
    QCOMPARE(entry.sortIndex, 2147483648u);
    QCOMPARE(entry.attributes, fullView().attributes);
}

void TaskSwitcherEntryTest::readingReplacesEveryMember()
{
    TaskSwitcherEntry entry = fullView();
    receive(ValueText::view({})) >> entry;
    QVERIFY(isEmpty(entry));

    entry = fullView();
    receive(QStringLiteral("('u', 'a', '1', '2', '3', '4', uint32 5, uint32 6, {'new': <7>})")) >> entry;
    QCOMPARE(entry.attributes, (QVariantMap{{QStringLiteral("new"), 7}}));
    QCOMPARE(entry.info4, QStringLiteral("4"));
    QCOMPARE(entry.sortIndex, 6u);
}

void TaskSwitcherEntryTest::aKeyThatComesTwiceKeepsBothValues()
{
    TaskSwitcherEntry entry;
    receive(QStringLiteral("('u', '', '', '', '', '', uint32 0, uint32 0, "
                           "{'twice': <'read first'>, 'once': <1>, 'twice': <'read last'>})"))
        >> entry;
    const QString key = QStringLiteral("twice");
    QCOMPARE(entry.attributes.size(), 3);
    QCOMPARE(entry.attributes.value(key), QVariant(QStringLiteral("read last")));
    QCOMPARE(entry.attributes.count(key), 2);
    QCOMPARE(std::next(entry.attributes.constFind(key)).value(), QVariant(QStringLiteral("read first")));

    const TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(send(entry).contains(QStringLiteral("{'once': <1>, 'twice': <'read last'>, 'twice': <'read first'>}")));
}

void TaskSwitcherEntryTest::containersStayUnparsed()
{
    TaskSwitcherEntry entry;
    receive(QStringLiteral("('u', '', '', '', '', '', uint32 0, uint32 0, "
                           "{'structure': <(1, 'a')>, 'array': <[1, 2]>, 'dictionary': <{'k': 'v'}>, 'text': <'t'>})"))
        >> entry;
    const auto signature = [&entry](const char* key) {
        return entry.attributes.value(QLatin1String(key)).value<QDBusArgument>().currentSignature();
    };
    QCOMPARE(signature("structure"), QStringLiteral("(is)"));
    QCOMPARE(signature("array"), QStringLiteral("ai"));
    QCOMPARE(signature("dictionary"), QStringLiteral("a{ss}"));
    QCOMPARE(entry.attributes.value(QStringLiteral("text")), QVariant(QStringLiteral("t")));
}

void TaskSwitcherEntryTest::attributesOfEveryTypeAreCarriedUnchanged_data()
{
    QTest::addColumn<QString>("value");
    for (const char* const value : {"byte 0x07",
                                    "true",
                                    "int16 -3",
                                    "uint16 4",
                                    "-5",
                                    "uint32 6",
                                    "int64 -7",
                                    "uint64 18446744073709551615",
                                    "0.125",
                                    "'text'",
                                    "objectpath '/a/b'",
                                    "signature 'a{sv}'",
                                    "<'nested'>",
                                    "[byte 0x01, 0x02]",
                                    "['a', 'b']",
                                    "(1, 'a', [2.5])",
                                    "{'k': <1>}",
                                    "{'k': 'v'}",
                                    "[('a', 1), ('b', 2)]",
                                    "@ai []",
                                    "@a{sv} {}",
                                    "@as []",
                                    "@ay []",
                                    "{uint32 1: 'one'}",
                                    "[<1>, <'two'>, <(3, 4)>]",
                                    "[['a'], ['b', 'c']]"}) {
        QTest::newRow(value) << value;
    }
}

void TaskSwitcherEntryTest::attributesOfEveryTypeAreCarriedUnchanged()
{
    QFETCH(const QString, value);
    const QString text =
        QStringLiteral("('u', '', '', '', '', '', uint32 0, uint32 0, {'attribute': <%1>})").arg(value);
    TaskSwitcherEntry entry;
    receive(text) >> entry;
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(send(entry), QStringLiteral("/echo org.example.Echo.Take (ssssssuua{sv})(%1)").arg(text));
}

void TaskSwitcherEntryTest::textsAreCarriedUnchanged_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("blanks") << QStringLiteral("  a b \t");
    QTest::newRow("line breaks") << QStringLiteral("a\nb\r\n");
    QTest::newRow("quotes") << QStringLiteral("it's \"so\" \\ so");
    QTest::newRow("percent") << QStringLiteral("%1 %s 100%");
    QTest::newRow("beyond the basic plane") << QString::fromUtf8("\xF0\x9F\x9A\x97 \xE4\xB8\xAD\xE6\x96\x87 \xD7\xA9");
    QTest::newRow("long") << QString(100000, QLatin1Char('x'));
}

void TaskSwitcherEntryTest::textsAreCarriedUnchanged()
{
    QFETCH(const QString, text);
    TaskSwitcherEntry sent;
    sent.uuid = text;
    sent.info1 = text;
    sent.info4 = text;
    sent.attributes = {{QStringLiteral("k") + text, text}};
    TaskSwitcherEntry entry;
    receive(ValueText::view(sent)) >> entry;
    QCOMPARE(entry.uuid, text);
    QCOMPARE(entry.info1, text);
    QCOMPARE(entry.info4, text);
    QCOMPARE(entry.attributes, sent.attributes);
}

void TaskSwitcherEntryTest::anArrayIsReadInItsOrderWithDuplicates()
{
    const QString twice = QStringLiteral("twice");
    const QList<TaskSwitcherEntry> sent{makeView(twice, QStringLiteral("a")), makeView(QString(), QStringLiteral("b")),
                                        makeView(twice, QStringLiteral("c"))};
    QList<TaskSwitcherEntry> entries;
    receive(ValueText::views(sent)) >> entries;
    QCOMPARE(uuids(entries), uuids(sent));
    QCOMPARE(entries.at(2).appId, QStringLiteral("c"));
}

void TaskSwitcherEntryTest::readingAnArrayEmptiesTheListFirst()
{
    QList<TaskSwitcherEntry> entries{fullView(), fullView()};
    receive(ValueText::views({})) >> entries;
    QVERIFY(entries.isEmpty());

    entries = {fullView(), fullView()};
    receive(ValueText::views({makeView(QStringLiteral("u"), QStringLiteral("a"))})) >> entries;
    QCOMPARE(uuids(entries), QStringList{QStringLiteral("u")});
    QVERIFY(entries.first().attributes.isEmpty());
}

void TaskSwitcherEntryTest::theOperatorsReturnTheirArgument()
{
    TaskSwitcherEntry entry;
    QList<TaskSwitcherEntry> entries;
    const QDBusArgument one = receive(cFullViewText);
    QCOMPARE(&(one >> entry), &one);
    const QDBusArgument many = receive(ValueText::views({entry}));
    QCOMPARE(&(many >> entries), &many);
    QDBusArgument written;
    QCOMPARE(&(written << entry), &written);
    QCOMPARE(written.currentSignature(), QStringLiteral("(ssssssuua{sv})"));
}

TELVARO_TEST_MAIN(TaskSwitcherEntryTest)
#include "TaskSwitcherEntryTest.moc"
