// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "VariantConversionTools.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusVariant>
#include <QObject>
#include <QStringList>
#include <QTest>
#include <QVariant>

#include <limits>

namespace {

void addRow(const char* name, const QVariant& value)
{
    QTest::newRow(name) << value;
}

// Values that convert to none of the types.
void addContainers()
{
    addRow("invalid", QVariant());
    addRow("string list", QStringList{QStringLiteral("1")});
    addRow("empty string list", QStringList());
    addRow("byte array", QByteArray("true"));
    addRow("list", QVariantList{true});
    addRow("map", QVariantMap{{QStringLiteral("a"), true}});
    addRow("D-Bus variant", QVariant::fromValue(QDBusVariant(true)));
    addRow("D-Bus container", QVariant::fromValue(QDBusArgument()));
    addRow("object path", QVariant::fromValue(QDBusObjectPath(QStringLiteral("/true"))));
    addRow("signature", QVariant::fromValue(QDBusSignature(QStringLiteral("b"))));
}

} // namespace

class VariantConversionToolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsBools_data();
    void readsBools();
    void refusesWhatIsNoBool_data();
    void refusesWhatIsNoBool();
    void readsInts_data();
    void readsInts();
    void refusesWhatIsNoInt_data();
    void refusesWhatIsNoInt();
    void readsStrings_data();
    void readsStrings();
    void refusesWhatIsNoString_data();
    void refusesWhatIsNoString();
};

void VariantConversionToolsTest::readsBools_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("expected");
    QTest::newRow("true") << QVariant(true) << true;
    QTest::newRow("false") << QVariant(false) << false;
    QTest::newRow("byte 0") << QVariant::fromValue(uchar(0)) << false;
    QTest::newRow("byte 1") << QVariant::fromValue(uchar(1)) << true;
    QTest::newRow("byte 255") << QVariant::fromValue(uchar(255)) << true;
    QTest::newRow("int16 0") << QVariant::fromValue(short(0)) << false;
    QTest::newRow("int16 -1") << QVariant::fromValue(short(-1)) << true;
    QTest::newRow("uint16 0") << QVariant::fromValue(ushort(0)) << false;
    QTest::newRow("uint16 65535") << QVariant::fromValue(ushort(65535)) << true;
    QTest::newRow("int32 0") << QVariant(0) << false;
    QTest::newRow("int32 1") << QVariant(1) << true;
    QTest::newRow("int32 -2147483648") << QVariant(std::numeric_limits<int>::min()) << true;
    QTest::newRow("uint32 0") << QVariant(0u) << false;
    QTest::newRow("uint32 4294967295") << QVariant(4294967295u) << true;
    QTest::newRow("int64 0") << QVariant(0ll) << false;
    QTest::newRow("int64 2^32") << QVariant(4294967296ll) << true;
    QTest::newRow("int64 smallest") << QVariant(std::numeric_limits<qint64>::min()) << true;
    QTest::newRow("uint64 0") << QVariant(0ull) << false;
    QTest::newRow("uint64 largest") << QVariant(std::numeric_limits<quint64>::max()) << true;
    QTest::newRow("word true") << QVariant(QStringLiteral("true")) << true;
    QTest::newRow("word false") << QVariant(QStringLiteral("false")) << false;
    QTest::newRow("word 1") << QVariant(QStringLiteral("1")) << true;
    QTest::newRow("word 0") << QVariant(QStringLiteral("0")) << false;
}

void VariantConversionToolsTest::readsBools()
{
    QFETCH(const QVariant, value);
    QFETCH(const bool, expected);
    bool result = !expected;
    QVERIFY(VariantConversionTools::toBool(value, result));
    QCOMPARE(result, expected);
}

void VariantConversionToolsTest::refusesWhatIsNoBool_data()
{
    QTest::addColumn<QVariant>("value");
    addContainers();
    addRow("empty word", QString());
    addRow("word yes", QStringLiteral("yes"));
    addRow("word on", QStringLiteral("on"));
    addRow("word 2", QStringLiteral("2"));
    addRow("word -1", QStringLiteral("-1"));
    addRow("word TRUE", QStringLiteral("TRUE"));
    addRow("word and blank", QStringLiteral("true "));
    addRow("word and more", QStringLiteral("truest"));
    addRow("fraction", 0.5);
    addRow("whole fraction", 1.0);
}

void VariantConversionToolsTest::refusesWhatIsNoBool()
{
    QFETCH(const QVariant, value);
    for (const bool before : {false, true}) {
        bool result = before;
        QVERIFY(!VariantConversionTools::toBool(value, result));
        QCOMPARE(result, before);
    }
}

void VariantConversionToolsTest::readsInts_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("byte") << QVariant::fromValue(uchar(65)) << 65;
    QTest::newRow("int16") << QVariant::fromValue(short(-1)) << -1;
    QTest::newRow("uint16") << QVariant::fromValue(ushort(65535)) << 65535;
    QTest::newRow("int32 smallest") << QVariant(std::numeric_limits<int>::min()) << std::numeric_limits<int>::min();
    QTest::newRow("uint32 2^31 - 1") << QVariant(2147483647u) << 2147483647;
    QTest::newRow("int64") << QVariant(-1ll) << -1;
    QTest::newRow("uint64") << QVariant(300ull) << 300;
}

void VariantConversionToolsTest::readsInts()
{
    QFETCH(const QVariant, value);
    QFETCH(const int, expected);
    int result = ~expected;
    QVERIFY(VariantConversionTools::toInt(value, result));
    QCOMPARE(result, expected);
}

void VariantConversionToolsTest::refusesWhatIsNoInt_data()
{
    QTest::addColumn<QVariant>("value");
    addContainers();
    addRow("true", true);
    addRow("word", QStringLiteral("1"));
    addRow("fraction", 1.0);
    addRow("uint32 2^31", 2147483648u);
    addRow("int64 2^32", 4294967296ll);
    addRow("uint64 largest", std::numeric_limits<quint64>::max());
}

void VariantConversionToolsTest::refusesWhatIsNoInt()
{
    QFETCH(const QVariant, value);
    int result = 7;
    QVERIFY(!VariantConversionTools::toInt(value, result));
    QCOMPARE(result, 7);
}

void VariantConversionToolsTest::readsStrings_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("word") << QVariant(QStringLiteral("90")) << "90";
    QTest::newRow("empty") << QVariant(QStringLiteral("")) << "";
    QTest::newRow("null") << QVariant(QString()) << "";
    QTest::newRow("blanks") << QVariant(QStringLiteral(" 9\n")) << " 9\n";
    QTest::newRow("byte") << QVariant::fromValue(uchar(65)) << "65";
    QTest::newRow("byte 255") << QVariant::fromValue(uchar(255)) << "255";
    QTest::newRow("int16") << QVariant::fromValue(short(-90)) << "-90";
    QTest::newRow("uint16") << QVariant::fromValue(ushort(65535)) << "65535";
    QTest::newRow("int32") << QVariant(-90) << "-90";
    QTest::newRow("uint32") << QVariant(4294967295u) << "4294967295";
    QTest::newRow("int64") << QVariant(std::numeric_limits<qint64>::min()) << "-9223372036854775808";
    QTest::newRow("uint64") << QVariant(std::numeric_limits<quint64>::max()) << "18446744073709551615";
    QTest::newRow("fraction") << QVariant(1.5) << "1.5";
    QTest::newRow("true") << QVariant(true) << "true";
    QTest::newRow("false") << QVariant(false) << "false";
}

void VariantConversionToolsTest::readsStrings()
{
    QFETCH(const QVariant, value);
    QFETCH(const QString, expected);
    QString result = QStringLiteral("before");
    QVERIFY(VariantConversionTools::toString(value, result));
    QCOMPARE(result, expected);
}

void VariantConversionToolsTest::refusesWhatIsNoString_data()
{
    QTest::addColumn<QVariant>("value");
    addContainers();
}

void VariantConversionToolsTest::refusesWhatIsNoString()
{
    QFETCH(const QVariant, value);
    QString result = QStringLiteral("before");
    QVERIFY(!VariantConversionTools::toString(value, result));
    QCOMPARE(result, QStringLiteral("before"));
}

QTEST_GUILESS_MAIN(VariantConversionToolsTest)
#include "VariantConversionToolsTest.moc"
