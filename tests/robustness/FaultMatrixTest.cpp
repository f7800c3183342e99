// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"
#include "Fault.h"
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
    error(QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"), QStringLiteral("uuid should not be empty"));
const QString cRefused = error(QStringLiteral("org.example.Error.Refused"), QStringLiteral("not now"));
const QString cGone = error(QStringLiteral("org.freedesktop.DBus.Error.NoReply"),
                            QStringLiteral("Message recipient disconnected from message bus without replying"));

bool leavesTheResult(Fault fault)
{
    return fault == Fault::ExtraArgument || fault == Fault::LateReply;
}

QStringList logWithoutViews(Fault fault, const ServiceCall& call)
{
    const bool exit = fault == Fault::Exit;
    const QString problem = fault == Fault::OtherContent ? cUnparsed : cUnreadViews;
    if (call.operation == QLatin1String("getViews")) {
        return {problem};
    }
    if (call.operation == QLatin1String("getCurrentView") || call.operation == QLatin1String("isCurrentView")) {
        return {problem, exit ? cAbsent : cNoCurrentView};
    }
    if (call.operation == QLatin1String("pidToTaskSwitcherEntry")) {
        return {problem, cNoPid};
    }
    if (call.operation == QLatin1String("idsToTaskSwitcherEntry")) {
        return {problem, cNoIds};
    }
    if (call.operation == QLatin1String("surfaceToTop")) {
        return exit ? QStringList{problem, cNoPid, cAbsent} : QStringList{problem, cNoPid};
    }
    if (call.operation == QLatin1String("switchToView")) {
        return exit ? QStringList{problem, cNoIds, cAbsent, cSwitchFailed + cInvalidInterface}
                    : QStringList{problem, cNoIds, cSwitchFailed + cEmptyUuid};
    }
    // A step.
    if (call.number == 2) {
        return {problem, exit ? cAbsent : cNoCurrentView, cNoStep};
    }
    // Until the event loop turns, the proxy stays valid, so the second read is tried.
    return exit ? QStringList{problem, cUnreadViews, cAbsent, cNoStep} : QStringList{problem, cNoStep};
}

QStringList logWithoutCurrentView(Fault fault, const ServiceCall& call)
{
    const QString problem = fault == Fault::OtherContent ? cUnparsed : cUnreadCurrentView;
    const bool isStep = call.operation.startsWith(QLatin1String("iterateViews"));
    return isStep ? QStringList{problem, cNoStep} : QStringList{problem};
}

QStringList logWithoutProperty(Fault fault, const ServiceCall& call)
{
    QStringList log;
    if (fault != Fault::OtherContent) {
        log.append(unread(call.property));
    }
    if (call.operation != QLatin1String("getProperty")) {
        log.append(unconverted(call.property));
    }
    return log;
}

Outcome expectationOfRefusedView(Fault fault, const ServiceCall& call)
{
    // The arguments of a reply to Set are ignored.
    const bool isRefused = fault == Fault::ErrorReply || fault == Fault::Exit;
    if (!isRefused || call.operation == QLatin1String("surfaceToTop")) {
        return {Operations::result(call.operation), {}};
    }
    if (call.operation == QLatin1String("setCurrentView")) {
        return {fault == Fault::Exit ? QStringLiteral("org.freedesktop.DBus.Error.NoReply: Message recipient "
                                                      "disconnected from message bus without replying")
                                     : QStringLiteral("org.example.Error.Refused: not now"),
                {}};
    }
    const QString failed = call.operation == QLatin1String("switchToView") ? cSwitchFailed : cStepFailed;
    return {QStringLiteral("false"), {failed + (fault == Fault::Exit ? cGone : cRefused)}};
}

/// QtDBus's error message for a reply with an unexpected signature, as logged.
QString unexpected(const QString& signature)
{
    return QStringLiteral("Unexpected reply signature: got \\\"%1, expected \\\"s\\\" (QString)").arg(signature);
}

Outcome expectationWithoutScreenShot(Fault fault)
{
    const auto unusable = [](const QString& message) {
        return Outcome{QStringLiteral("nothing"), {invalidScreenShot(message)}};
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

Outcome expectation(Fault fault, const ServiceCall& call)
{
    if (leavesTheResult(fault)) {
        return {Operations::result(call.operation), {}};
    }
    if (call.member == QLatin1String("Get")) {
        return {Operations::failure(call.operation),
                call.property == QLatin1String("views")             ? logWithoutViews(fault, call)
                    : call.property == QLatin1String("currentView") ? logWithoutCurrentView(fault, call)
                                                                    : logWithoutProperty(fault, call)};
    }
    if (call.property == QLatin1String("currentView")) {
        return expectationOfRefusedView(fault, call);
    }
    // All other replies are ignored.
    return call.member == QLatin1String("ScreenShot") ? expectationWithoutScreenShot(fault) : Outcome();
}

/// What an operation returns and logs if Get and Set, or the methods of its own interface, are said to have no reply.
Outcome expectationWithoutReply(const QString& operation)
{
    static const QMap<QString, QStringList> cLogs{
        {QStringLiteral("getViews"), {cUnreadViews}},
        {QStringLiteral("getCurrentView"), {cUnreadViews, cUnreadCurrentView}},
        {QStringLiteral("pidToTaskSwitcherEntry"), {cUnreadViews, cNoPid}},
        {QStringLiteral("idsToTaskSwitcherEntry"), {cUnreadViews, cNoIds}},
        {QStringLiteral("switchToView"), {cUnreadViews, cNoIds, cSwitchFailed + cEmptyUuid}},
        {QStringLiteral("iterateViews forward"), {cUnreadViews, cUnreadViews, cUnreadCurrentView, cNoStep}},
        {QStringLiteral("iterateViews backward"), {cUnreadViews, cUnreadViews, cUnreadCurrentView, cNoStep}},
        {QStringLiteral("surfaceToTop"), {cUnreadViews, cNoPid}},
        {QStringLiteral("isCurrentView"), {cUnreadViews, cUnreadCurrentView}},
        {QStringLiteral("captureScreenShot"), {invalidScreenShot(unexpected(QStringLiteral("<empty signature>\\\"")))}},
    };
    const auto log = cLogs.constFind(operation);
    if (log != cLogs.constEnd()) {
        return {Operations::failure(operation), *log};
    }
    for (const ServiceCall& call : ServiceCall::all()) {
        if (call.operation == operation && call.member == QLatin1String("Get")) {
            return {Operations::failure(operation), logWithoutProperty(Fault::EmptyReply, call)};
        }
    }
    return {Operations::result(operation), {}};
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
        for (int faultIndex = 0; faultIndex < Faults::all().size(); ++faultIndex) {
            QTest::addRow("%s: %s %s (%d) is %s", qPrintable(call.operation), qPrintable(call.member),
                          qPrintable(call.property), call.number, Faults::all().at(faultIndex).second)
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
    const Fault fault = Faults::all().at(faultIndex).first;
    Scenario::set(mService);

    call.script(mService, Faults::behaviour(fault, call.rightAnswer()));

    const Outcome expected = expectation(fault, call);
    QCOMPARE(mOperations->perform(call.operation), expected.result);
    QCOMPARE(mLog->takeTexts(), expected.log);

    // The fault leaves no state.
    if (fault == Fault::Exit) {
        startService();
        Scenario::set(mService);
    }
    QCOMPARE(mOperations->perform(call.operation), Operations::result(call.operation));
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
        QCOMPARE(outcome.result, Operations::result(operation));
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
        const Outcome expected = expectationWithoutReply(operation);
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
