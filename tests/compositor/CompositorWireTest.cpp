// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusClients.h"
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "TestMain.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDir>
#include <QDomDocument>

namespace {

const QString cIntrospectable = QStringLiteral("org.freedesktop.DBus.Introspectable");

/// Values of every basic type and of some containers, by signature.
QMap<QString, QVariant> sampleValues()
{
    return {
        {QStringLiteral("s"), QStringLiteral("text")},
        {QStringLiteral("b"), true},
        {QStringLiteral("y"), QVariant::fromValue(uchar(1))},
        {QStringLiteral("n"), QVariant::fromValue(short(1))},
        {QStringLiteral("q"), QVariant::fromValue(ushort(1))},
        {QStringLiteral("i"), 1},
        {QStringLiteral("u"), 1U},
        {QStringLiteral("x"), qlonglong(1)},
        {QStringLiteral("t"), qulonglong(1)},
        {QStringLiteral("d"), 1.0},
        {QStringLiteral("o"), QVariant::fromValue(QDBusObjectPath(QStringLiteral("/a")))},
        {QStringLiteral("g"), QVariant::fromValue(QDBusSignature(QStringLiteral("s")))},
        {QStringLiteral("as"), QStringList({QStringLiteral("a")})},
        {QStringLiteral("ay"), QByteArray("a")},
        {QStringLiteral("a{sv}"), QVariantMap({{QStringLiteral("k"), 1}})},
        {QStringLiteral("v"), QVariant::fromValue(QDBusVariant(1))},
        {QStringLiteral("av"), QVariantList({1})},
    };
}

/// Invalid arguments for a method with these types, by description: every argument once with every other type and once
/// missing, and a surplus one.
QVector<QPair<QString, QVariantList>> wrongArguments(const QStringList& types)
{
    const QMap<QString, QVariant> samples = sampleValues();
    QVariantList right;
    for (const QString& type : types) {
        right.append(samples.value(type));
    }
    QVector<QPair<QString, QVariantList>> all;
    for (int i = 0; i < types.size(); ++i) {
        for (auto sample = samples.cbegin(); sample != samples.cend(); ++sample) {
            if (sample.key() != types.at(i)) {
                QVariantList wrong = right;
                wrong[i] = sample.value();
                all.append({QStringLiteral("argument %1 %2").arg(i).arg(sample.key()), wrong});
            }
        }
        all.append({QStringLiteral("with %1 arguments").arg(i), QVariantList(right.mid(0, i))});
    }
    all.append({QStringLiteral("with %1 arguments").arg(types.size() + 1), right + QVariantList({1})});
    return all;
}

bool isWrongCall(const QDBusMessage& reply)
{
    const QString error = reply.errorName();
    return reply.type() == QDBusMessage::ErrorMessage
        && (error == QLatin1String("org.freedesktop.DBus.Error.UnknownMethod")
            || error == QLatin1String("org.freedesktop.DBus.Error.InvalidArgs"));
}

} // namespace

/// The objects against their introspection files, and against invalid calls.
class CompositorWireTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void objectsDescribeThemselvesAsTheirFilesDo_data();
    void objectsDescribeThemselvesAsTheirFilesDo();
    void allPropertiesAreReadAtOnce();
    void unknownNamesAreErrors_data();
    void unknownNamesAreErrors();
    void valuesOfWrongTypesAreRefused_data();
    void valuesOfWrongTypesAreRefused();
    void methodsRefuseWrongArguments_data();
    void methodsRefuseWrongArguments();
    void propertyMethodsRefuseWrongArguments();
    void aWriteWithoutAReplyIsDone();
    void twentyClientsCallEverythingWronglyAtOnce();
};

void CompositorWireTest::objectsDescribeThemselvesAsTheirFilesDo_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("file");
    QTest::newRow("task switcher") << CompositorBus::cTaskSwitcherPath << CompositorBus::cTaskSwitcher;
    QTest::newRow("screen") << CompositorBus::cScreenPath << CompositorBus::cScreen;
    QTest::newRow("overlay") << CompositorBus::cOverlayPath << CompositorBus::cOverlay;
    QTest::newRow("screenshot") << CompositorBus::cScreenShotPath << CompositorBus::cScreenShot;
    QTest::newRow("notifications") << CompositorBus::cNotificationsPath << CompositorBus::cNotifications;
}

void CompositorWireTest::objectsDescribeThemselvesAsTheirFilesDo()
{
    QFETCH(QString, path);
    QFETCH(QString, file);
    // One line for each member, in any order: kind, name, and types with their direction.
    const auto members = [&file](const QByteArray& xml) {
        QDomDocument document;
        if (!document.setContent(xml)) {
            return QStringList(QStringLiteral("not XML"));
        }
        QStringList lines;
        const QDomNodeList interfaces = document.documentElement().elementsByTagName(QStringLiteral("interface"));
        for (int i = 0; i < interfaces.size(); ++i) {
            const QDomElement interface = interfaces.at(i).toElement();
            if (interface.attribute(QStringLiteral("name")) != file) {
                continue;
            }
            for (QDomElement member = interface.firstChildElement(); !member.isNull();
                 member = member.nextSiblingElement()) {
                QString line = member.tagName() + QLatin1Char(' ') + member.attribute(QStringLiteral("name"))
                    + QLatin1Char(' ') + member.attribute(QStringLiteral("type")) + QLatin1Char(' ')
                    + member.attribute(QStringLiteral("access"));
                const bool isSignal = member.tagName() == QLatin1String("signal");
                for (QDomElement argument = member.firstChildElement(QStringLiteral("arg")); !argument.isNull();
                     argument = argument.nextSiblingElement(QStringLiteral("arg"))) {
                    line += QLatin1Char(' ')
                        + (isSignal ? QString() : argument.attribute(QStringLiteral("direction"), QStringLiteral("in")))
                        + QLatin1Char(':') + argument.attribute(QStringLiteral("type"));
                }
                lines.append(line);
            }
        }
        lines.sort();
        return lines;
    };

    QFile description(QStringLiteral(TELVARO_INTERFACE_DIRECTORY "/%1.xml").arg(file));
    QVERIFY(description.open(QIODevice::ReadOnly));
    const QStringList expected = members(description.readAll());
    QVERIFY(!expected.isEmpty());
    const QString answer =
        CompositorBus::callChecked(path, cIntrospectable, QStringLiteral("Introspect")).value(0).toString();
    QCOMPARE(members(answer.toUtf8()), expected);
    QCOMPARE(answer.count(QStringLiteral("<interface name=\"org.freedesktop.DBus.Properties\">")), 1);
}

void CompositorWireTest::allPropertiesAreReadAtOnce()
{
    const auto all = [](const QString& path, const QString& interface) {
        const QVariant answer =
            CompositorBus::callChecked(path, CompositorBus::cProperties, QStringLiteral("GetAll"), {interface})
                .value(0);
        return qdbus_cast<QVariantMap>(answer).keys();
    };
    QCOMPARE(all(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher),
             QStringList({QStringLiteral("currentView"), QStringLiteral("views")}));
    QCOMPARE(
        all(CompositorBus::cScreenPath, CompositorBus::cScreen),
        QStringList({QStringLiteral("fullScreen"), QStringLiteral("orientation"), QStringLiteral("screenSaverActive"),
                     QStringLiteral("screenSaverEnabled"), QStringLiteral("screenSaverTimeoutSeconds")}));
}

void CompositorWireTest::unknownNamesAreErrors_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("member");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("error");
    const QString get = QStringLiteral("Get");
    const QString views = QStringLiteral("views");
    const QString nothing = QStringLiteral("nothing");
    const QString foreign = QStringLiteral("de.Telvaro.nothing");
    const auto error = [](const char* name) {
        return QStringLiteral("org.freedesktop.DBus.Error.") + QLatin1String(name);
    };
    QTest::newRow("property") << CompositorBus::cTaskSwitcherPath << CompositorBus::cProperties << get
                              << QVariantList({CompositorBus::cTaskSwitcher, nothing}) << error("UnknownProperty");
    QTest::newRow("property in another case")
        << CompositorBus::cTaskSwitcherPath << CompositorBus::cProperties << get
        << QVariantList({CompositorBus::cTaskSwitcher, QStringLiteral("Views")}) << error("UnknownProperty");
    QTest::newRow("QObject's own property")
        << CompositorBus::cTaskSwitcherPath << CompositorBus::cProperties << get
        << QVariantList({CompositorBus::cTaskSwitcher, QStringLiteral("objectName")}) << error("UnknownProperty");
    QTest::newRow("interface of a property") << CompositorBus::cTaskSwitcherPath << CompositorBus::cProperties << get
                                             << QVariantList({foreign, views}) << error("UnknownInterface");
    QTest::newRow("the screen's interface at the task switcher")
        << CompositorBus::cTaskSwitcherPath << CompositorBus::cProperties << get
        << QVariantList({CompositorBus::cScreen, QStringLiteral("fullScreen")}) << error("UnknownInterface");
    QTest::newRow("empty interface of a property")
        << CompositorBus::cTaskSwitcherPath << CompositorBus::cProperties << get << QVariantList({QString(), views})
        << error("UnknownInterface");
    QTest::newRow("interface of all properties")
        << CompositorBus::cScreenPath << CompositorBus::cProperties << QStringLiteral("GetAll")
        << QVariantList({foreign}) << error("UnknownInterface");
    QTest::newRow("writing an unknown property")
        << CompositorBus::cScreenPath << CompositorBus::cProperties << QStringLiteral("Set")
        << QVariantList({CompositorBus::cScreen, nothing, QVariant::fromValue(QDBusVariant(1))})
        << error("UnknownProperty");
    QTest::newRow("writing to an unknown interface")
        << CompositorBus::cScreenPath << CompositorBus::cProperties << QStringLiteral("Set")
        << QVariantList({foreign, nothing, QVariant::fromValue(QDBusVariant(1))}) << error("UnknownInterface");
    QTest::newRow("method") << CompositorBus::cOverlayPath << CompositorBus::cOverlay << nothing << QVariantList()
                            << error("UnknownMethod");
    QTest::newRow("method in another case")
        << CompositorBus::cOverlayPath << CompositorBus::cOverlay << QStringLiteral("show") << QVariantList({views})
        << error("UnknownMethod");
    QTest::newRow("interface of a method") << CompositorBus::cOverlayPath << foreign << QStringLiteral("Show")
                                           << QVariantList({views}) << error("UnknownInterface");
    QTest::newRow("object") << QStringLiteral("/nothing") << CompositorBus::cOverlay << QStringLiteral("Show")
                            << QVariantList({views}) << error("UnknownObject");
}

void CompositorWireTest::unknownNamesAreErrors()
{
    QFETCH(QString, path);
    QFETCH(QString, interface);
    QFETCH(QString, member);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, error);
    QCOMPARE(CompositorBus::call(path, interface, member, arguments).errorName(), error);
}

void CompositorWireTest::valuesOfWrongTypesAreRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("type");
    const auto rows = [](const QString& path, const QString& interface, const char* property, const char* type) {
        const QStringList signatures = sampleValues().keys();
        for (const QString& signature : signatures) {
            if (signature != QLatin1String(type)) {
                QTest::newRow(qPrintable(QString::fromLatin1(property) + QLatin1Char(' ') + signature))
                    << path << interface << QString::fromLatin1(property) << signature;
            }
        }
    };
    rows(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, "currentView", "s");
    rows(CompositorBus::cScreenPath, CompositorBus::cScreen, "screenSaverEnabled", "b");
    rows(CompositorBus::cScreenPath, CompositorBus::cScreen, "screenSaverTimeoutSeconds", "i");
    rows(CompositorBus::cScreenPath, CompositorBus::cScreen, "orientation", "s");
    rows(CompositorBus::cScreenPath, CompositorBus::cScreen, "fullScreen", "b");
}

void CompositorWireTest::valuesOfWrongTypesAreRefused()
{
    QFETCH(QString, path);
    QFETCH(QString, interface);
    QFETCH(QString, property);
    QFETCH(QString, type);
    const QVariant before = CompositorBus::get(path, interface, property);
    const QDBusMessage reply = CompositorBus::set(path, interface, property, sampleValues().value(type));
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
    QVERIFY2(reply.errorMessage().startsWith(QStringLiteral("the property \"%1\" is of type ").arg(property))
                 && reply.errorMessage().endsWith(QStringLiteral(", not \"%1\"").arg(type)),
             qPrintable(reply.errorMessage()));
    QCOMPARE(CompositorBus::get(path, interface, property), before);
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorWireTest::methodsRefuseWrongArguments_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("member");
    QTest::addColumn<QVariantList>("arguments");
    const auto rows = [](const QString& path, const QString& interface, const char* member, const QStringList& types) {
        const QString name = QString::fromLatin1(member);
        for (const auto& wrong : wrongArguments(types)) {
            QTest::newRow(qPrintable(name + QLatin1Char(' ') + wrong.first))
                << path << interface << name << wrong.second;
        }
    };
    const auto list = [](const char* types) {
        return QString::fromLatin1(types).split(QLatin1Char(' '));
    };
    rows(CompositorBus::cOverlayPath, CompositorBus::cOverlay, "Show", list("s"));
    rows(CompositorBus::cScreenShotPath, CompositorBus::cScreenShot, "ScreenShot", list("s"));
    rows(CompositorBus::cNotificationsPath, CompositorBus::cNotifications, "Notify", list("s u s s s as a{sv} i"));
    rows(CompositorBus::cNotificationsPath, CompositorBus::cNotifications, "CloseNotification", list("u"));
}

void CompositorWireTest::methodsRefuseWrongArguments()
{
    QFETCH(QString, path);
    QFETCH(QString, interface);
    QFETCH(QString, member);
    QFETCH(QVariantList, arguments);
    const QDBusMessage reply = CompositorBus::call(path, interface, member, arguments);
    QVERIFY2(isWrongCall(reply), qPrintable(CompositorBus::errorOf(reply)));
}

void CompositorWireTest::propertyMethodsRefuseWrongArguments()
{
    const QMap<QString, QVariant> samples = sampleValues();
    for (const QString& path : {CompositorBus::cTaskSwitcherPath, CompositorBus::cScreenPath}) {
        for (const QVariant& sample : samples) {
            for (const char* const member : {"Get", "GetAll", "Set"}) {
                const QString name = QString::fromLatin1(member);
                QVariantList arguments;
                for (int count = 0; count <= 3; ++count) {
                    const QDBusMessage reply = CompositorBus::call(path, CompositorBus::cProperties, name, arguments);
                    QVERIFY2(reply.type() == QDBusMessage::ErrorMessage, member);
                    arguments.append(sample);
                }
            }
        }
    }
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorWireTest::aWriteWithoutAReplyIsDone()
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), CompositorBus::cScreenPath,
                                       CompositorBus::cProperties, QStringLiteral("Set"));
    message << CompositorBus::cScreen << QStringLiteral("orientation")
            << QVariant::fromValue(QDBusVariant(QStringLiteral("diagonal")));
    PrivateBus::connection().send(message);
    QCOMPARE(mMonitor->takeNames(), QStringList());

    message.setArguments({CompositorBus::cScreen, QStringLiteral("orientation"),
                          QVariant::fromValue(QDBusVariant(QStringLiteral("90")))});
    PrivateBus::connection().send(message);
    QCOMPARE(mMonitor->takeNames(), QStringList(QStringLiteral("orientation")));
    QCOMPARE(CompositorBus::get(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation")),
             QVariant(QStringLiteral("90")));
}

void CompositorWireTest::twentyClientsCallEverythingWronglyAtOnce()
{
    struct Call
    {
        QString path;
        QString interface;
        QString member;
        QVariantList arguments;
    };
    const QMap<QString, QVariant> samples = sampleValues();
    QVector<Call> calls;
    const QFileInfoList files =
        QDir(QStringLiteral(TELVARO_INTERFACE_DIRECTORY)).entryInfoList({QStringLiteral("*.xml")});
    for (const QFileInfo& info : files) {
        QFile file(info.filePath());
        QDomDocument document;
        QVERIFY(file.open(QIODevice::ReadOnly) && document.setContent(&file));
        const QString path = document.documentElement().attribute(QStringLiteral("name"));
        const QDomElement interface = document.documentElement().firstChildElement(QStringLiteral("interface"));
        const QString name = interface.attribute(QStringLiteral("name"));
        for (QDomElement method = interface.firstChildElement(QStringLiteral("method")); !method.isNull();
             method = method.nextSiblingElement(QStringLiteral("method"))) {
            QStringList types;
            for (QDomElement argument = method.firstChildElement(QStringLiteral("arg")); !argument.isNull();
                 argument = argument.nextSiblingElement(QStringLiteral("arg"))) {
                if (argument.attribute(QStringLiteral("direction")) == QLatin1String("in")) {
                    types.append(argument.attribute(QStringLiteral("type")));
                }
            }
            for (const auto& wrong : wrongArguments(types)) {
                calls.append({path, name, method.attribute(QStringLiteral("name")), wrong.second});
            }
        }
        if (!interface.firstChildElement(QStringLiteral("property")).isNull()) {
            for (const QVariant& sample : samples) {
                calls.append({path, CompositorBus::cProperties, QStringLiteral("Get"), {name, sample}});
                calls.append({path, CompositorBus::cProperties, QStringLiteral("GetAll"), {sample}});
                calls.append({path, CompositorBus::cProperties, QStringLiteral("Set"), {name, sample, sample}});
            }
        }
    }
    QVERIFY(calls.size() > 200);

    const BusClients clients(20);
    const auto callAll = [&] {
        QList<QDBusPendingCall> replies;
        for (const Call& call : qAsConst(calls)) {
            for (const QDBusConnection& connection : clients.connections()) {
                replies.append(BusClients::send(connection, call.path, call.interface, call.member, call.arguments));
            }
        }
        for (int i = 0; i < replies.size(); ++i) {
            replies[i].waitForFinished();
            const Call& call = calls.at(i / clients.connections().size());
            QVERIFY2(replies.at(i).isError() && replies.at(i).error().type() != QDBusError::NoReply,
                     qPrintable(call.member + QStringLiteral(" with %1 arguments").arg(call.arguments.size())));
        }
    };
    callAll();
    callAll();
    CompositorBus::currentView();
    const int descriptors = mCompositor->descriptorCount();
    const qint64 before = mCompositor->residentMemory();
    callAll();
    callAll();
    CompositorBus::currentView();
    QCOMPARE(mCompositor->descriptorCount(), descriptors);
    const qint64 growth = mCompositor->residentMemory() - before;
    QVERIFY2(growth < 2 * 1024 * 1024, qPrintable(QString::number(growth)));
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

TELVARO_TEST_MAIN(CompositorWireTest)

#include "CompositorWireTest.moc"
