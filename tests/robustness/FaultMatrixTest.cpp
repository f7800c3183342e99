// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"
#include "OperationProcess.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "Scenario.h"
#include "ServiceCall.h"
#include "TestMain.h"
#include "Warnings.h"

#include <QMap>

using namespace Warnings;

namespace {

const QString cEmptyUuid =
    QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error.InvalidArgs\", \"uuid should not be empty\")");
const QString cInvalidInterface =
    QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error.UnknownInterface\", \"Invalid QDBus Interface\")");
const QString cRefused = QStringLiteral("QDBusError(\"org.example.Error.Refused\", \"not now\")");
const QString cGone = QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error.NoReply\", "
                                     "\"Message recipient disconnected from message bus without replying\")");

/// What goes wrong with one call to the service.
enum class Fault
{
    ErrorReply,
    EmptyReply,
    PlainReply,
    OtherContent,
    ExtraArgument,
    Exit,
    LateReply
};

const QList<QPair<Fault, const char*>> cFaults{
    {Fault::ErrorReply, "answered with an error"},
    {Fault::EmptyReply, "answered with nothing"},
    {Fault::PlainReply, "answered with another type"},
    {Fault::OtherContent, "answered with a variant of another content"},
    {Fault::ExtraArgument, "answered with an argument more"},
    {Fault::Exit, "not answered, the service ends"},
    {Fault::LateReply, "answered after a second"},
};

struct Expectation
{
    QString result;
    QStringList log;
};

Behaviour behaviour(Fault fault, const ServiceCall& call)
{
    switch (fault) {
    case Fault::ErrorReply:
        return Behaviour::error(QStringLiteral("org.example.Error.Refused"), QStringLiteral("not now"));
    case Fault::EmptyReply:
        return Behaviour::reply();
    case Fault::PlainReply:
        return Behaviour::reply({QStringLiteral("uint32 7")});
    case Fault::OtherContent:
        return Behaviour::reply({QStringLiteral("<{1: 2.5}>")});
    case Fault::ExtraArgument:
        return Behaviour::reply(call.rightAnswer() + QStringList{QStringLiteral("'more'")});
    case Fault::Exit:
        return Behaviour::exit();
    case Fault::LateReply:
        return Behaviour::reply(call.rightAnswer()).after(1000);
    }
    Q_UNREACHABLE();
}

bool leavesTheResult(Fault fault)
{
    return fault == Fault::ExtraArgument || fault == Fault::LateReply;
}

Expectation expectationWithoutViews(Fault fault, const ServiceCall& call)
{
    const bool exit = fault == Fault::Exit;
    const QString problem = fault == Fault::OtherContent ? cUnparsed : cUnreadViews;
    if (call.operation == QLatin1String("getViews")) {
        return {QString(), {problem}};
    }
    if (call.operation == QLatin1String("getCurrentView")) {
        return {QString(), {problem, exit ? cAbsent : cNoCurrentView}};
    }
    if (call.operation == QLatin1String("isCurrentView")) {
        return {QStringLiteral("false"), {problem, exit ? cAbsent : cNoCurrentView}};
    }
    if (call.operation == QLatin1String("pidToTaskSwitcherEntry")) {
        return {QString(), {problem, cNoPid}};
    }
    if (call.operation == QLatin1String("idsToTaskSwitcherEntry")) {
        return {QString(), {problem, cNoIds}};
    }
    if (call.operation == QLatin1String("surfaceToTop")) {
        return {QString(), exit ? QStringList{problem, cNoPid, cAbsent} : QStringList{problem, cNoPid}};
    }
    if (call.operation == QLatin1String("switchToView")) {
        const QString failed = QStringLiteral("switch view failed ");
        return {QStringLiteral("false"),
                exit ? QStringList{problem, cNoIds, cAbsent, failed + cInvalidInterface}
                     : QStringList{problem, cNoIds, failed + cEmptyUuid}};
    }
    // A step.
    if (call.number == 2) {
        return {QStringLiteral("false"), {problem, exit ? cAbsent : cNoCurrentView, cNoStep}};
    }
    // Just after the service has gone, the proxy still knows it, and the second read tries.
    return {QStringLiteral("false"),
            exit ? QStringList{problem, cUnreadViews, cAbsent, cNoStep} : QStringList{problem, cNoStep}};
}

Expectation expectationWithoutCurrentView(Fault fault, const ServiceCall& call)
{
    const QString problem = fault == Fault::OtherContent ? cUnparsed : cUnreadCurrentView;
    if (call.operation == QLatin1String("getCurrentView")) {
        return {QString(), {problem}};
    }
    if (call.operation == QLatin1String("isCurrentView")) {
        return {QStringLiteral("false"), {problem}};
    }
    return {QStringLiteral("false"), {problem, cNoStep}};
}

Expectation expectationWithoutProperty(Fault fault, const ServiceCall& call)
{
    const bool isText = call.property == QLatin1String("orientation");
    const QString unread = QStringLiteral("Unable to read property:  \"%1\"").arg(call.property);
    const QString unconverted = QStringLiteral("Unable to convert property  \"%1\" to %2!")
                                    .arg(call.property, isText ? QStringLiteral("QString") : QStringLiteral("bool"));
    const bool isRead = fault == Fault::OtherContent;
    if (call.operation == QLatin1String("getProperty")) {
        return {QString(), isRead ? QStringList() : QStringList{unread}};
    }
    const bool hasResult = !Operations::isConstruction(call.operation);
    return {isText || !hasResult ? QString() : QStringLiteral("false"),
            isRead ? QStringList{unconverted} : QStringList{unread, unconverted}};
}

Expectation expectationOfRefusedView(Fault fault, const ServiceCall& call)
{
    // What comes with a reply to Set is not looked at.
    const bool isRefused = fault == Fault::ErrorReply || fault == Fault::Exit;
    if (!isRefused || call.operation == QLatin1String("surfaceToTop")) {
        return {Scenario::result(call.operation), {}};
    }
    if (call.operation == QLatin1String("setCurrentView")) {
        return {fault == Fault::Exit ? QStringLiteral("org.freedesktop.DBus.Error.NoReply: Message recipient "
                                                      "disconnected from message bus without replying")
                                     : QStringLiteral("org.example.Error.Refused: not now"),
                {}};
    }
    const QString failed = call.operation == QLatin1String("switchToView") ? QStringLiteral("switch view failed ")
                                                                           : QStringLiteral("iterateViews failed: ");
    return {QStringLiteral("false"), {failed + (fault == Fault::Exit ? cGone : cRefused)}};
}

/// QtDBus's words for a reply of another signature, as they are logged.
QString unexpected(const QString& signature)
{
    return QStringLiteral("Unexpected reply signature: got \\\"%1, expected \\\"s\\\" (QString)").arg(signature);
}

Expectation expectationWithoutScreenShot(Fault fault)
{
    const auto unusable = [](const QString& message) {
        return Expectation{QStringLiteral("nothing"),
                           {QStringLiteral("Reply of  \"ScreenShot\" is invalid! \"%1\"").arg(message)}};
    };
    switch (fault) {
    case Fault::ErrorReply:
        return unusable(QStringLiteral("not now"));
    case Fault::EmptyReply:
        return unusable(unexpected(QStringLiteral("<empty signature>\\\"")));
    case Fault::PlainReply:
        return unusable(unexpected(QStringLiteral("u\\\" (uint)")));
    case Fault::OtherContent:
        return unusable(unexpected(QStringLiteral("v\\\" (QDBusVariant)")));
    default:
        return unusable(QStringLiteral("Message recipient disconnected from message bus without replying"));
    }
}

Expectation expectation(Fault fault, const ServiceCall& call)
{
    if (leavesTheResult(fault)) {
        return {Scenario::result(call.operation), {}};
    }
    if (call.member == QLatin1String("Get")) {
        if (call.property == QLatin1String("views")) {
            return expectationWithoutViews(fault, call);
        }
        return call.property == QLatin1String("currentView") ? expectationWithoutCurrentView(fault, call)
                                                             : expectationWithoutProperty(fault, call);
    }
    if (call.property == QLatin1String("currentView")) {
        return expectationOfRefusedView(fault, call);
    }
    // Nobody looks at the other answers.
    return call.member == QLatin1String("ScreenShot") ? expectationWithoutScreenShot(fault) : Expectation();
}

/// What an operation answers where Get and Set, or the methods of its own interface, are said to have no reply.
Expectation expectationWithoutReply(const QString& operation)
{
    static const QMap<QString, Expectation> cExpectations{
        {QStringLiteral("getViews"), {QString(), {cUnreadViews}}},
        {QStringLiteral("getCurrentView"), {QString(), {cUnreadViews, cUnreadCurrentView}}},
        {QStringLiteral("pidToTaskSwitcherEntry"), {QString(), {cUnreadViews, cNoPid}}},
        {QStringLiteral("idsToTaskSwitcherEntry"), {QString(), {cUnreadViews, cNoIds}}},
        {QStringLiteral("switchToView"),
         {QStringLiteral("false"), {cUnreadViews, cNoIds, QStringLiteral("switch view failed ") + cEmptyUuid}}},
        {QStringLiteral("iterateViews forward"),
         {QStringLiteral("false"), {cUnreadViews, cUnreadViews, cUnreadCurrentView, cNoStep}}},
        {QStringLiteral("iterateViews backward"),
         {QStringLiteral("false"), {cUnreadViews, cUnreadViews, cUnreadCurrentView, cNoStep}}},
        {QStringLiteral("surfaceToTop"), {QString(), {cUnreadViews, cNoPid}}},
        {QStringLiteral("isCurrentView"), {QStringLiteral("false"), {cUnreadViews, cUnreadCurrentView}}},
        {QStringLiteral("captureScreenShot"),
         {QStringLiteral("nothing"),
          {QStringLiteral("Reply of  \"ScreenShot\" is invalid! \"%1\"")
               .arg(unexpected(QStringLiteral("<empty signature>\\\"")))}}},
    };
    const auto known = cExpectations.constFind(operation);
    if (known != cExpectations.constEnd()) {
        return *known;
    }
    for (const ServiceCall& call : ServiceCall::all()) {
        if (call.operation == operation && call.member == QLatin1String("Get")) {
            return expectationWithoutProperty(Fault::EmptyReply, call);
        }
    }
    return {Scenario::result(operation), {}};
}

} // namespace

/// Every operation with every fault of every call that it makes.
class FaultMatrixTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyCallMayFailInEveryWay_data();
    void everyCallMayFailInEveryWay();
    void everyOperationWorksWithoutAnIntrospectionThatSucceeds_data();
    void everyOperationWorksWithoutAnIntrospectionThatSucceeds();
    void everyOperationSurvivesMethodsThatAreSaidToHaveNoReply();
    void cleanupTestCase();

private:
    void scriptIntrospection(const Behaviour& behaviour);

    Scenario mScenario;
    std::unique_ptr<Operations> mOperations;
    int mCellCount = 0;
};

void FaultMatrixTest::initTestCase()
{
    ConnectorFixture::initTestCase();
    mOperations = std::make_unique<Operations>();
    mOperations->prepare();
}

void FaultMatrixTest::everyCallMayFailInEveryWay_data()
{
    QTest::addColumn<int>("callIndex");
    QTest::addColumn<int>("faultIndex");
    const QList<ServiceCall> calls = ServiceCall::all();
    for (int callIndex = 0; callIndex < calls.size(); ++callIndex) {
        const ServiceCall& call = calls.at(callIndex);
        for (int faultIndex = 0; faultIndex < cFaults.size(); ++faultIndex) {
            QTest::addRow("%s: %s %s (%d) is %s", qPrintable(call.operation), qPrintable(call.member),
                          qPrintable(call.property), call.number, cFaults.at(faultIndex).second)
                << callIndex << faultIndex;
        }
    }
}

void FaultMatrixTest::everyCallMayFailInEveryWay()
{
    QFETCH(int, callIndex);
    QFETCH(int, faultIndex);
    const QList<ServiceCall> calls = ServiceCall::all();
    const ServiceCall& call = calls.at(callIndex);
    const Fault fault = cFaults.at(faultIndex).first;
    Scenario::set(mService);

    call.script(mService, behaviour(fault, call));

    const Expectation expected = expectation(fault, call);
    QCOMPARE(mOperations->perform(call.operation), expected.result);
    QCOMPARE(mLog->takeTexts(), expected.log);

    // Nothing of it stays.
    if (fault == Fault::Exit) {
        startService();
        Scenario::set(mService);
    }
    QCOMPARE(mOperations->perform(call.operation), Scenario::result(call.operation));
    QCOMPARE(mLog->takeTexts(), QStringList());
    ++mCellCount;
}

void FaultMatrixTest::scriptIntrospection(const Behaviour& behaviour)
{
    for (const char* path :
         {"/taskswitcher", "/screen", "/globaloverlay", "/org/freedesktop/Notifications", "/screenshot"}) {
        mService.script(QLatin1String(path), QStringLiteral("org.freedesktop.DBus.Introspectable"),
                        QStringLiteral("Introspect"), {behaviour});
    }
}

void FaultMatrixTest::everyOperationWorksWithoutAnIntrospectionThatSucceeds_data()
{
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("reply");
    QTest::addRow("it fails") << QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod") << QString();
    QTest::addRow("it is nothing") << QString() << QString();
    QTest::addRow("it is a number") << QString() << QStringLiteral("7");
    QTest::addRow("it is an empty text") << QString() << QStringLiteral("''");
    QTest::addRow("it is no XML") << QString() << QStringLiteral("'<node><interface name=\"de.Telvaro.screen\"'");
    QTest::addRow("it has other interfaces")
        << QString() << QStringLiteral("'<node><interface name=\"org.example.Other\"/></node>'");
    QTest::addRow("it has an interface without methods")
        << QString()
        << QStringLiteral("'<node><interface name=\"org.freedesktop.DBus.Properties\"/>"
                          "<interface name=\"de.Telvaro.globaloverlay\"/><interface name=\"de.Telvaro.screenshot\"/>"
                          "<interface name=\"org.freedesktop.Notifications\"/></node>'");
}

void FaultMatrixTest::everyOperationWorksWithoutAnIntrospectionThatSucceeds()
{
    QFETCH(QString, error);
    QFETCH(QString, reply);
    Scenario::set(mService);
    scriptIntrospection(!error.isEmpty()      ? Behaviour::error(error, QStringLiteral("no"))
                            : reply.isEmpty() ? Behaviour::reply()
                                              : Behaviour::reply({reply}));
    // Qt asks once per interface and process.
    OperationProcess process;
    process.start();
    QCOMPARE(process.prepare().log, QStringList());
    for (const QString& operation : Operations::names()) {
        const Outcome outcome = process.perform(operation);
        QCOMPARE(outcome.result, Scenario::result(operation));
        QCOMPARE(outcome.log, QStringList());
        ++mCellCount;
    }
}

void FaultMatrixTest::everyOperationSurvivesMethodsThatAreSaidToHaveNoReply()
{
    const auto interface = [](const char* name, const QStringList& methods) {
        QString text = QStringLiteral("<interface name=\"%1\">").arg(QLatin1String(name));
        for (const QString& method : methods) {
            text += QStringLiteral("<method name=\"%1\"><annotation name=\"org.freedesktop.DBus.Method.NoReply\" "
                                   "value=\"true\"/></method>")
                        .arg(method);
        }
        return text + QStringLiteral("</interface>");
    };
    Scenario::set(mService);
    scriptIntrospection(Behaviour::reply(
        {QStringLiteral("'<node>%1%2%3%4</node>'")
             .arg(interface("org.freedesktop.DBus.Properties", {QStringLiteral("Get"), QStringLiteral("Set")}),
                  interface("de.Telvaro.globaloverlay", {QStringLiteral("Show"), QStringLiteral("Hide")}),
                  interface("org.freedesktop.Notifications", {QStringLiteral("Notify")}),
                  interface("de.Telvaro.screenshot", {QStringLiteral("ScreenShot")}))}));
    OperationProcess process;
    process.start();
    process.prepare();
    for (const QString& operation : Operations::names()) {
        const Outcome outcome = process.perform(operation);
        const Expectation expected = expectationWithoutReply(operation);
        QVERIFY2(outcome.result == expected.result && outcome.log == expected.log,
                 qPrintable(operation
                            + QStringLiteral(" answered \"%1\" and logged \"%2\"")
                                  .arg(outcome.result, outcome.log.join(QStringLiteral("\", \"")))));
        ++mCellCount;
    }
}

void FaultMatrixTest::cleanupTestCase()
{
    qInfo("%d cells", mCellCount);
    mOperations.reset();
}

TELVARO_TEST_MAIN(FaultMatrixTest)

#include "FaultMatrixTest.moc"
