// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TaskSwitcherProxy.h"

#include <QDBusMetaType>
#include <QTest>

/// What qdbusxml2cpp makes of the installed description of the task switcher.
class GeneratedProxyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTypeOfTheViewsHasTheSignatureOfTheDescription();
};

void GeneratedProxyTest::theTypeOfTheViewsHasTheSignatureOfTheDescription()
{
    qDBusRegisterMetaType<ViewRecordList::value_type>();
    qDBusRegisterMetaType<ViewRecordList>();
    const QMetaObject& proxy = DeTelvaroTaskswitcherInterface::staticMetaObject;
    const int views = proxy.indexOfProperty("views");
    QVERIFY(views >= 0);
    QCOMPARE(QByteArray(proxy.property(views).typeName()), QByteArray("ViewRecordList"));
    QCOMPARE(QByteArray(QDBusMetaType::typeToSignature(qMetaTypeId<ViewRecordList>())), QByteArray("a(ssssssuua{sv})"));
}

QTEST_GUILESS_MAIN(GeneratedProxyTest)

#include "GeneratedProxyTest.moc"
