// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <TelvaroDBusDefinitions.h>
#include <TelvaroDeviceDistinction.h>
#include <TelvaroGlobalOverlayDBusConnector.h>
#include <TelvaroLiveObject.h>
#include <TelvaroNotificationDBusConnector.h>
#include <TelvaroRequests.h>
#include <TelvaroScreen.h>
#include <TelvaroScreenDBusConnector.h>
#include <TelvaroScreenShotDBusConnector.h>
#include <TelvaroTaskSwitcher.h>
#include <TelvaroTaskSwitcherDBusConnector.h>
#include <TelvaroViewModel.h>

#include <QFile>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTest>

#include <cstddef>
#include <dlfcn.h>
#include <link.h>

namespace {

using Entry = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

/// Has access to the base's protected members, like classes of an application.
class DerivedConnector : public TelvaroNotificationDBusConnector
{
public:
    std::ptrdiff_t interfaceOffset() const
    {
        return reinterpret_cast<const char*>(&mInterface)
            - reinterpret_cast<const char*>(static_cast<const TelvaroDBusConnectorBase*>(this));
    }
};

template <typename Class> QString size(const char* name)
{
    return QStringLiteral("%1: size %2, alignment %3\n")
        .arg(QLatin1String(name), QString::number(sizeof(Class)), QString::number(alignof(Class)));
}

QString offset(const char* name, std::ptrdiff_t value)
{
    return QStringLiteral("%1: offset %2\n").arg(QLatin1String(name), QString::number(value));
}

QString layout()
{
    return size<TelvaroDBusConnectorBase>("TelvaroDBusConnectorBase")
        + offset("TelvaroDBusConnectorBase::mInterface", DerivedConnector().interfaceOffset())
        + size<TelvaroDBusDefinitions>("TelvaroDBusDefinitions")
        + size<TelvaroDeviceDistinction>("TelvaroDeviceDistinction")
        + size<TelvaroGlobalOverlayDBusConnector>("TelvaroGlobalOverlayDBusConnector")
        + size<TelvaroNotificationDBusConnector>("TelvaroNotificationDBusConnector")
        + size<TelvaroScreenDBusConnector>("TelvaroScreenDBusConnector")
        + size<TelvaroScreenShotDBusConnector>("TelvaroScreenShotDBusConnector")
        + size<TelvaroTaskSwitcherDBusConnector>("TelvaroTaskSwitcherDBusConnector") + size<Entry>("TaskSwitcherEntry")
        + offset("TaskSwitcherEntry::uuid", offsetof(Entry, uuid))
        + offset("TaskSwitcherEntry::appId", offsetof(Entry, appId))
        + offset("TaskSwitcherEntry::info1", offsetof(Entry, info1))
        + offset("TaskSwitcherEntry::info2", offsetof(Entry, info2))
        + offset("TaskSwitcherEntry::info3", offsetof(Entry, info3))
        + offset("TaskSwitcherEntry::info4", offsetof(Entry, info4))
        + offset("TaskSwitcherEntry::pid", offsetof(Entry, pid))
        + offset("TaskSwitcherEntry::sortIndex", offsetof(Entry, sortIndex))
        + offset("TaskSwitcherEntry::attributes", offsetof(Entry, attributes))
        + size<TelvaroLiveObject>("TelvaroLiveObject") + size<TelvaroRequests>("TelvaroRequests")
        + size<TelvaroScreen>("TelvaroScreen") + size<TelvaroTaskSwitcher>("TelvaroTaskSwitcher")
        + size<TelvaroViewModel>("TelvaroViewModel");
}

/// The number of entries in the class's virtual table.
int virtualFunctionCount(const char* className)
{
    const QByteArray symbol = "_ZTV" + QByteArray::number(qstrlen(className)) + className;
    Dl_info info{};
    const ElfW(Sym)* table = nullptr;
    if (dladdr1(dlsym(RTLD_DEFAULT, symbol.constData()), &info,
                const_cast<void**>(reinterpret_cast<const void**>(&table)), RTLD_DL_SYMENT)
            == 0
        || table == nullptr) {
        return 0;
    }
    const int beforeTheFirst = 2;
    return static_cast<int>(table->st_size / sizeof(void*)) - beforeTheFirst;
}

QString describe(const QMetaMethod& method)
{
    const char* const access = method.access() == QMetaMethod::Private ? "private "
        : method.access() == QMetaMethod::Protected                    ? "protected "
                                                                       : "";
    const char* const kind = method.methodType() == QMetaMethod::Signal ? "signal"
        : method.methodType() == QMetaMethod::Slot                      ? "slot"
                                                                        : "method";
    return QStringLiteral("    %1%2 %3 %4 (%5)\n")
        .arg(QLatin1String(access), QLatin1String(kind), QLatin1String(method.typeName()),
             QString::fromLatin1(method.methodSignature()), QString::fromLatin1(method.parameterNames().join(", ")));
}

QString describe(const QMetaProperty& property)
{
    return QStringLiteral("    property %1 %2%3\n")
        .arg(QLatin1String(property.typeName()), QLatin1String(property.name()),
             property.isWritable() ? QStringLiteral(", writable") : QString());
}

QString describe(const QMetaEnum& enumeration)
{
    QStringList keys;
    for (int i = 0; i < enumeration.keyCount(); ++i) {
        keys.append(QStringLiteral("%1 = %2").arg(QLatin1String(enumeration.key(i))).arg(enumeration.value(i)));
    }
    return QStringLiteral("    enumeration %1: %2\n")
        .arg(QLatin1String(enumeration.name()), keys.join(QStringLiteral(", ")));
}

QString metaObjects()
{
    QString text;
    for (const QMetaObject* metaObject :
         {&TelvaroDBusConnectorBase::staticMetaObject, &TelvaroGlobalOverlayDBusConnector::staticMetaObject,
          &TelvaroNotificationDBusConnector::staticMetaObject, &TelvaroScreenDBusConnector::staticMetaObject,
          &TelvaroScreenShotDBusConnector::staticMetaObject, &TelvaroTaskSwitcherDBusConnector::staticMetaObject,
          &TelvaroLiveObject::staticMetaObject, &TelvaroScreen::staticMetaObject,
          &TelvaroTaskSwitcher::staticMetaObject, &TelvaroViewModel::staticMetaObject}) {
        text += QStringLiteral("%1 : %2, %3 virtual functions\n")
                    .arg(QLatin1String(metaObject->className()), QLatin1String(metaObject->superClass()->className()),
                         QString::number(virtualFunctionCount(metaObject->className())));
        for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i) {
            text += describe(metaObject->method(i));
        }
        for (int i = metaObject->propertyOffset(); i < metaObject->propertyCount(); ++i) {
            text += describe(metaObject->property(i));
        }
        for (int i = metaObject->enumeratorOffset(); i < metaObject->enumeratorCount(); ++i) {
            text += describe(metaObject->enumerator(i));
        }
    }
    return text;
}

} // namespace

/// The binary interface that applications compile in, compared with the recorded one. Sizes differ between processors.
class InterfaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sizesAndFieldsAreWhereTheyWere();
    void metaObjectsHaveTheSameMembersInTheSameOrder();

private:
    static void compare(const QString& actual, const char* fileName);
};

void InterfaceTest::compare(const QString& actual, const char* fileName)
{
    const QString name = QLatin1String(fileName);
    QFile expected(QStringLiteral(TELVARO_BASELINE_DIRECTORY "/%1").arg(name));
    QVERIFY2(expected.open(QIODevice::ReadOnly), qPrintable(expected.errorString()));
    QFile written(QStringLiteral(TELVARO_RESULT_DIRECTORY "/%1").arg(name));
    QVERIFY2(written.open(QIODevice::WriteOnly), qPrintable(written.errorString()));
    QVERIFY(written.write(actual.toUtf8()) > 0);
    const QString advice =
        QStringLiteral("The interface is not the one that is recorded; see it with\n"
                       "    diff %1 %2\n"
                       "Applications that were built before would break: take the change back or, where it is "
                       "wanted, raise the library's major version and copy the second file over the first.")
            .arg(expected.fileName(), written.fileName());
    QVERIFY2(actual == QString::fromUtf8(expected.readAll()), qPrintable(advice));
}

void InterfaceTest::sizesAndFieldsAreWhereTheyWere()
{
    compare(layout(), "layout." TELVARO_ARCHITECTURE ".txt");
}

void InterfaceTest::metaObjectsHaveTheSameMembersInTheSameOrder()
{
    compare(metaObjects(), "meta-objects.txt");
}

QTEST_GUILESS_MAIN(InterfaceTest)
#include "InterfaceTest.moc"
