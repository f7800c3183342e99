// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroGlobalOverlayDBusConnector.h"

#include "ConnectorFixture.h"
#include "TestMain.h"
#include "WithProxy.h"

namespace {

// The helper is private, but its messages are part of the contract; an explicit instantiation may name private members.
struct CallHelper
{
    using Member = void (TelvaroGlobalOverlayDBusConnector::*)(const QString&, const QVariant&);
    friend Member reach(CallHelper);
};

template <typename Tag, typename Tag::Member Private> struct Reach
{
    friend typename Tag::Member reach(Tag)
    {
        return Private;
    }
};

template struct Reach<CallHelper, &TelvaroGlobalOverlayDBusConnector::dbusCallHelper>;

const QString cPath = QStringLiteral("/globaloverlay");
const QString cInterface = QStringLiteral("de.Telvaro.globaloverlay");
const QString cHideCall = QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Hide ()");

QString showCall(const QString& argument)
{
    return QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Show s(%1)").arg(argument);
}

} // namespace

class TelvaroGlobalOverlayDBusConnectorTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void theProxyIsThatOfTheOverlay();
    void theParentIsTaken();
    void showingSendsTheMessage_data();
    void showingSendsTheMessage();
    void hidingSendsNoArguments();
    void repeatedCallsAreAllSent();
    void slotsCanBeInvokedByNameAndConnected();
    void theHelperSendsAValueAsItsOwnType_data();
    void theHelperSendsAValueAsItsOwnType();
    void theHelperSendsNoArgumentForAnInvalidValue();
};

void TelvaroGlobalOverlayDBusConnectorTest::theProxyIsThatOfTheOverlay()
{
    const WithProxy<TelvaroGlobalOverlayDBusConnector> connector;
    QCOMPARE(connector.mInterface.service(), QStringLiteral(TELVARO_SERVICE_NAME));
    QCOMPARE(connector.mInterface.path(), cPath);
    QCOMPARE(connector.mInterface.interface(), cInterface);
}

void TelvaroGlobalOverlayDBusConnectorTest::theParentIsTaken()
{
    QObject parent;
    const auto* const connector = new TelvaroGlobalOverlayDBusConnector(&parent);
    QCOMPARE(connector->parent(), &parent);
}

void TelvaroGlobalOverlayDBusConnectorTest::showingSendsTheMessage_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("argument");
    QTest::newRow("plain") << "Hello"
                           << "'Hello'";
    QTest::newRow("null") << QString() << "''";
    QTest::newRow("empty") << QStringLiteral("") << "''";
    QTest::newRow("blanks and lines") << "  a\n b\t"
                                      << "'  a\\n b\\t'";
    QTest::newRow("markup") << "<b>&amp;</b> %1"
                            << "'<b>&amp;</b> %1'";
    QTest::newRow("beyond ASCII") << QString::fromUtf8("\xC3\xA4 \xF0\x9F\x9A\x97")
                                  << QString::fromUtf8("'\xC3\xA4 \xF0\x9F\x9A\x97'");
}

void TelvaroGlobalOverlayDBusConnectorTest::showingSendsTheMessage()
{
    QFETCH(const QString, message);
    QFETCH(const QString, argument);
    TelvaroGlobalOverlayDBusConnector connector;
    mService.takeCalls();
    connector.showGlobalOverlay(message);
    QCOMPARE(mService.takeDescriptions(), QStringList{showCall(argument)});
}

void TelvaroGlobalOverlayDBusConnectorTest::hidingSendsNoArguments()
{
    TelvaroGlobalOverlayDBusConnector connector;
    mService.takeCalls();
    connector.hideGlobalOverlay();
    QCOMPARE(mService.takeDescriptions(), QStringList{cHideCall});
}

void TelvaroGlobalOverlayDBusConnectorTest::repeatedCallsAreAllSent()
{
    TelvaroGlobalOverlayDBusConnector connector;
    mService.takeCalls();
    connector.hideGlobalOverlay();
    connector.showGlobalOverlay(QStringLiteral("a"));
    connector.showGlobalOverlay(QStringLiteral("a"));
    connector.hideGlobalOverlay();
    connector.hideGlobalOverlay();
    QCOMPARE(mService.takeDescriptions(),
             (QStringList{cHideCall, showCall(QStringLiteral("'a'")), showCall(QStringLiteral("'a'")), cHideCall,
                          cHideCall}));
}

void TelvaroGlobalOverlayDBusConnectorTest::slotsCanBeInvokedByNameAndConnected()
{
    TelvaroGlobalOverlayDBusConnector connector;
    mService.takeCalls();
    QVERIFY(QMetaObject::invokeMethod(&connector, "showGlobalOverlay", Q_ARG(QString, QStringLiteral("a"))));
    QVERIFY(QMetaObject::invokeMethod(&connector, "hideGlobalOverlay"));
    QObject sender;
    QVERIFY(connect(&sender, SIGNAL(objectNameChanged(QString)), &connector, SLOT(showGlobalOverlay(QString))));
    sender.setObjectName(QStringLiteral("b"));
    QCOMPARE(mService.takeDescriptions(),
             (QStringList{showCall(QStringLiteral("'a'")), cHideCall, showCall(QStringLiteral("'b'"))}));
}

void TelvaroGlobalOverlayDBusConnectorTest::theHelperSendsAValueAsItsOwnType_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("signatureAndArgument");
    QTest::newRow("int32") << QVariant(-5) << "i(-5)";
    QTest::newRow("uint32") << QVariant(5u) << "u(uint32 5)";
    QTest::newRow("bool") << QVariant(true) << "b(true)";
    QTest::newRow("double") << QVariant(0.5) << "d(0.5)";
    QTest::newRow("strings") << QVariant(QStringList{QStringLiteral("a")}) << "as(['a'])";
    QTest::newRow("empty string") << QVariant(QString()) << "s('')";
}

void TelvaroGlobalOverlayDBusConnectorTest::theHelperSendsAValueAsItsOwnType()
{
    QFETCH(const QVariant, value);
    QFETCH(const QString, signatureAndArgument);
    TelvaroGlobalOverlayDBusConnector connector;
    mService.takeCalls();
    (connector.*reach(CallHelper()))(QStringLiteral("Anything"), value);
    QCOMPARE(mService.takeDescriptions(),
             QStringList{QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Anything ") + signatureAndArgument});
}

void TelvaroGlobalOverlayDBusConnectorTest::theHelperSendsNoArgumentForAnInvalidValue()
{
    TelvaroGlobalOverlayDBusConnector connector;
    mService.takeCalls();
    (connector.*reach(CallHelper()))(QStringLiteral("Anything"), QVariant());
    QCOMPARE(mService.takeDescriptions(),
             QStringList{QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Anything ()")});
}

TELVARO_TEST_MAIN(TelvaroGlobalOverlayDBusConnectorTest)
#include "TelvaroGlobalOverlayDBusConnectorTest.moc"
