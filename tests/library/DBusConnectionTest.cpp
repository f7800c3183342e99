// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "DBusConnection.h"
#include "DBusConnectionParameter.h"
#include "PropertyReply.h"

#include "ConnectorFixture.h"
#include "PrivateBus.h"
#include "TestMain.h"

#include <QDBusMessage>
#include <QDBusVariant>

#include <type_traits>

class DBusConnectionTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void theConnectionIsTheProcesssSharedOne();
    void aServiceIsRegisteredWhileItOwnsItsName();
    void namesThatNobodyCanOwnAreNotRegistered_data();
    void namesThatNobodyCanOwnAreNotRegistered();
    void anErrorWithAVariantIsNoPropertysValue();
    void theParameterKeepsItsNamesInOrder();
    void theParameterReturnsItsOwnStrings();
    void theParameterHasAVirtualDestructorAndNothingElseVirtual();
};

void DBusConnectionTest::theConnectionIsTheProcesssSharedOne()
{
    const QDBusConnection connection = DBusConnection::getQDBusConnection();
    QVERIFY(connection.isConnected());
    QCOMPARE(connection.name(), PrivateBus::connection().name());
    QCOMPARE(connection.baseService(), PrivateBus::connection().baseService());
}

void DBusConnectionTest::aServiceIsRegisteredWhileItOwnsItsName()
{
    const QString name = QStringLiteral("org.example.Here");
    QVERIFY(!DBusConnection::isServiceRegistered(name));
    mService.own(name);
    QVERIFY(DBusConnection::isServiceRegistered(name));
    mService.release(name);
    QVERIFY(!DBusConnection::isServiceRegistered(name));
    QVERIFY(DBusConnection::isServiceRegistered(mService.uniqueName()));
}

void DBusConnectionTest::namesThatNobodyCanOwnAreNotRegistered_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << "";
    QTest::newRow("no dot") << "name";
    QTest::newRow("blank") << "org example";
    QTest::newRow("another case") << QStringLiteral(TELVARO_SERVICE_NAME).toUpper();
}

void DBusConnectionTest::namesThatNobodyCanOwnAreNotRegistered()
{
    QFETCH(const QString, name);
    QVERIFY(!DBusConnection::isServiceRegistered(name));
}

void DBusConnectionTest::anErrorWithAVariantIsNoPropertysValue()
{
    QDBusMessage error = QDBusMessage::createError(QDBusError::Failed, QStringLiteral("no"));
    error.setArguments({QVariant::fromValue(QDBusVariant(1))});
    QVERIFY(!PropertyReply::getValue(error));
}

void DBusConnectionTest::theParameterKeepsItsNamesInOrder()
{
    const DBusConnectionParameter parameter =
        DBusConnectionParameter::create(QStringLiteral("service"), QStringLiteral("path"), QStringLiteral("interface"));
    QCOMPARE(parameter.getServiceName(), QStringLiteral("service"));
    QCOMPARE(parameter.getPath(), QStringLiteral("path"));
    QCOMPARE(parameter.getInterfaceName(), QStringLiteral("interface"));
}

void DBusConnectionTest::theParameterReturnsItsOwnStrings()
{
    const DBusConnectionParameter parameter =
        DBusConnectionParameter::create(QStringLiteral("service"), QStringLiteral("path"), QStringLiteral("interface"));
    QCOMPARE(&parameter.getServiceName(), &parameter.getServiceName());
    QCOMPARE(&parameter.getPath(), &parameter.getPath());
    QCOMPARE(&parameter.getInterfaceName(), &parameter.getInterfaceName());
    QVERIFY((std::is_same_v<decltype(parameter.getPath()), const QString&>));
}

void DBusConnectionTest::theParameterHasAVirtualDestructorAndNothingElseVirtual()
{
    QVERIFY(std::has_virtual_destructor_v<DBusConnectionParameter>);
    // The table pointer, three strings and 32 bits.
    struct Layout
    {
        void* table;
        void* strings[3];
        qint32 reserved;
    };
    QCOMPARE(sizeof(DBusConnectionParameter), sizeof(Layout));
}

TELVARO_TEST_MAIN(DBusConnectionTest)
#include "DBusConnectionTest.moc"
