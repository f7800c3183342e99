// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroDBusDefinitions.h"

#include <QObject>
#include <QString>
#include <QTest>

using Getter = const QString& (*)();
Q_DECLARE_METATYPE(Getter)

class TelvaroDBusDefinitionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyGetterReturnsItsName_data();
    void everyGetterReturnsItsName();
    void everyGetterReturnsTheSameObjectEveryTime_data();
    void everyGetterReturnsTheSameObjectEveryTime();
    void notificationsGoToTheServiceAndNotToTheirInterface();
};

void TelvaroDBusDefinitionsTest::everyGetterReturnsItsName_data()
{
    using Names = TelvaroDBusDefinitions;
    QTest::addColumn<Getter>("getter");
    QTest::addColumn<QString>("name");
    QTest::newRow("service") << Getter(Names::getServiceName) << TELVARO_SERVICE_NAME;
    QTest::newRow("task switcher path") << Getter(Names::getTaskSwitcherPath) << "/taskswitcher";
    QTest::newRow("task switcher interface") << Getter(Names::getTaskSwitcherInterface) << "de.Telvaro.taskswitcher";
    QTest::newRow("properties interface") << Getter(Names::getPropertyInterface) << "org.freedesktop.DBus.Properties";
    QTest::newRow("get") << Getter(Names::getPropertyMehodGet) << "Get";
    QTest::newRow("set") << Getter(Names::getPropertyMehodSet) << "Set";
    QTest::newRow("overlay path") << Getter(Names::getGlobalOverlayPath) << "/globaloverlay";
    QTest::newRow("overlay interface") << Getter(Names::getGlobalOverlayInterface) << "de.Telvaro.globaloverlay";
    QTest::newRow("hide") << Getter(Names::getGlobalOverlayMethodHide) << "Hide";
    QTest::newRow("show") << Getter(Names::getGlobalOverlayMethodShow) << "Show";
    QTest::newRow("screen path") << Getter(Names::getScreenPath) << "/screen";
    QTest::newRow("screen interface") << Getter(Names::getScreenInterface) << "de.Telvaro.screen";
    QTest::newRow("notifications path") << Getter(Names::getNotificationsPath) << "/org/freedesktop/Notifications";
    QTest::newRow("notifications interface")
        << Getter(Names::getNotificationsInterface) << "org.freedesktop.Notifications";
    QTest::newRow("notify") << Getter(Names::getNotificationsMethodNotify) << "Notify";
    QTest::newRow("screenshot path") << Getter(Names::getScreenShotPath) << "/screenshot";
    QTest::newRow("screenshot interface") << Getter(Names::getScreenShotInterface) << "de.Telvaro.screenshot";
    QTest::newRow("screenshot") << Getter(Names::getScreenShotMethod) << "ScreenShot";
}

void TelvaroDBusDefinitionsTest::everyGetterReturnsItsName()
{
    QFETCH(const Getter, getter);
    QFETCH(const QString, name);
    QCOMPARE(getter(), name);
}

void TelvaroDBusDefinitionsTest::everyGetterReturnsTheSameObjectEveryTime_data()
{
    everyGetterReturnsItsName_data();
}

void TelvaroDBusDefinitionsTest::everyGetterReturnsTheSameObjectEveryTime()
{
    QFETCH(const Getter, getter);
    const QString& first = getter();
    QCOMPARE(&getter(), &first);
    // A string that shares a literal's storage owns none.
    QCOMPARE(first.capacity(), 0);
}

void TelvaroDBusDefinitionsTest::notificationsGoToTheServiceAndNotToTheirInterface()
{
    QVERIFY(TelvaroDBusDefinitions::getServiceName() != TelvaroDBusDefinitions::getNotificationsInterface());
}

QTEST_GUILESS_MAIN(TelvaroDBusDefinitionsTest)
#include "TelvaroDBusDefinitionsTest.moc"
