// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ChildProcess.h"
#include "PrivateBus.h"
#include "TaskSwitcherFixture.h"
#include "TestMain.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>
#include <type_traits>

namespace {

const quint32 cNotFound = 4294967295;
const QString cProcessNameToPid = QStringLiteral("processNameToPid(constQString&)const");
const QString cPidNotMatched = QStringLiteral("pid not matched with a view, return empty TaskSwitcherEntry");

} // namespace

class ProcessLookupTest : public TaskSwitcherFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void aRunningProcessIsFoundByItsName();
    void aNameThatNobodyHasIsLogged_data();
    void aNameThatNobodyHasIsLogged();
    void aNameThatTwoProcessesShareIsLogged();
    void theNameIsTheOnlyArgumentAndUnchanged_data();
    void theNameIsTheOnlyArgumentAndUnchanged();
    void theOutputIsReadAsOneNumber_data();
    void theOutputIsReadAsOneNumber();
    void theOutputOfAFailureIsItsErrorText_data();
    void theOutputOfAFailureIsItsErrorText();
    void aMissingProgramIsAFailure();
    void theBusIsNotNeeded();
    void isCallableOnAConstConnector();

    void surfacingMakesTheViewOfTheProcessCurrent();
    void surfacingAnUnknownProcessWritesNothing();
    void surfacingLooksSpecialIdsUpToo_data();
    void surfacingLooksSpecialIdsUpToo();

    void theCurrentViewsProcessIsRecognised();
    void anotherProcessIsNotTheCurrentViews();
    void anUnknownProcessIsNotTheCurrentViews();
    void anUnclearProcessEqualsACurrentViewThatCannotBeRead();
    void anUnknownProcessDiffersFromACurrentViewThatCannotBeRead();

private:
    /// Replaces the device's "pidof" by a shell script.
    void replacePidof(const QString& script);
    QString logged(const QString& text) const;

    QTemporaryDir mDirectory;
    QByteArray mSearchPath;
};

void ProcessLookupTest::initTestCase()
{
    TaskSwitcherFixture::initTestCase();
    mSearchPath = qgetenv("PATH");
}

void ProcessLookupTest::init()
{
    TaskSwitcherFixture::init();
    QFile::remove(mDirectory.filePath(QStringLiteral("pidof")));
    qputenv("PATH", mSearchPath);
}

void ProcessLookupTest::replacePidof(const QString& script)
{
    QFile file(mDirectory.filePath(QStringLiteral("pidof")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n" + script.toUtf8() + '\n');
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", mDirectory.path().toLocal8Bit() + ':' + mSearchPath);
}

QString ProcessLookupTest::logged(const QString& text) const
{
    return warning(cProcessNameToPid, text);
}

void ProcessLookupTest::aRunningProcessIsFoundByItsName()
{
    const QString name = QStringLiteral("one%1").arg(QCoreApplication::applicationPid());
    const QString program = mDirectory.filePath(name);
    QVERIFY(QFile::copy(ChildProcess::serviceProgram(QStringLiteral("idle-process")), program));
    ChildProcess process;
    process.run(program);
    process.readOutputLine();
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.processNameToPid(name), static_cast<quint32>(process.processId()));
    process.end();
    QCOMPARE(connector.processNameToPid(name), cNotFound);
    QCOMPARE(mLog->takeDescriptions(),
             QStringList{logged(QStringLiteral("Unable to find process with name \"%1\" \"\"").arg(name))});
}

void ProcessLookupTest::aNameThatNobodyHasIsLogged_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("unknown") << "no-such-process";
    QTest::newRow("empty") << "";
    QTest::newRow("blanks") << "  ";
    QTest::newRow("words") << "no such process";
    QTest::newRow("quotes and line break") << "no\n\"such\"";
}

void ProcessLookupTest::aNameThatNobodyHasIsLogged()
{
    QFETCH(const QString, name);
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.processNameToPid(name), cNotFound);
    QCOMPARE(
        mLog->takeDescriptions(),
        QStringList{logged(QStringLiteral("Unable to find process with name %1 \"\"").arg(LogCapture::quoted(name)))});
}

void ProcessLookupTest::aNameThatTwoProcessesShareIsLogged()
{
    const QString name = QStringLiteral("two%1").arg(QCoreApplication::applicationPid());
    const QString program = mDirectory.filePath(name);
    QVERIFY(QFile::copy(ChildProcess::serviceProgram(QStringLiteral("idle-process")), program));
    ChildProcess first;
    ChildProcess second;
    for (ChildProcess* const process : {&first, &second}) {
        process->run(program);
        process->readOutputLine();
    }
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.processNameToPid(name), 0u);
    const QString pattern = QStringLiteral("Unable to covert string ( \"%1 %2\\n\" ) to integer");
    const QString ascending = logged(pattern.arg(first.processId()).arg(second.processId()));
    const QString descending = logged(pattern.arg(second.processId()).arg(first.processId()));
    const QStringList messages = mLog->takeDescriptions();
    QVERIFY2(messages == QStringList{ascending} || messages == QStringList{descending},
             qPrintable(messages.join(QLatin1Char('\n'))));
}

void ProcessLookupTest::theNameIsTheOnlyArgumentAndUnchanged_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << "name";
    QTest::newRow("empty") << "";
    QTest::newRow("blanks") << "  two words ";
    QTest::newRow("quotes") << "it's \"quoted\" $HOME `ls` \\";
    QTest::newRow("option") << "-s";
    QTest::newRow("path") << "/usr/bin/name";
    QTest::newRow("beyond ASCII") << QString::fromUtf8("N\xC3\xA4me");
}

void ProcessLookupTest::theNameIsTheOnlyArgumentAndUnchanged()
{
    QFETCH(const QString, name);
    const QString record = mDirectory.filePath(QStringLiteral("arguments"));
    replacePidof(QStringLiteral("printf '%s|' \"$#\" \"$@\" > '%1'\necho 42").arg(record));
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.processNameToPid(name), 42u);
    QFile file(record);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(file.readAll()), QStringLiteral("1|%1|").arg(name));
}

void ProcessLookupTest::theOutputIsReadAsOneNumber_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<quint32>("pid");
    QTest::addColumn<QString>("unreadable");
    const QString readable;
    QTest::newRow("with line break") << "echo 4711" << 4711u << readable;
    QTest::newRow("without line break") << "printf 4711" << 4711u << readable;
    QTest::newRow("between blanks") << "printf ' \\t 4711 \\r\\n\\n'" << 4711u << readable;
    QTest::newRow("largest") << "echo 2147483647" << 2147483647u << readable;
    QTest::newRow("negative") << "echo -5" << 4294967291u << readable;
    QTest::newRow("error text beside it") << "echo 4711; echo trouble >&2" << 4711u << readable;
    QTest::newRow("reads its input") << "cat; echo 4711" << 4711u << readable;
    QTest::newRow("nothing") << "true" << 0u << "\"\"";
    QTest::newRow("line break only") << "echo" << 0u << "\"\\n\"";
    QTest::newRow("two numbers") << "echo 12 34" << 0u << "\"12 34\\n\"";
    QTest::newRow("two lines") << "echo 12; echo 34" << 0u << "\"12\\n34\\n\"";
    QTest::newRow("beyond the range") << "echo 2147483648" << 0u << "\"2147483648\\n\"";
    QTest::newRow("word") << "echo none" << 0u << "\"none\\n\"";
    QTest::newRow("number and word") << "echo 12x" << 0u << "\"12x\\n\"";
    QTest::newRow("hexadecimal") << "echo 0x10" << 0u << "\"0x10\\n\"";
    QTest::newRow("fraction") << "echo 1.0" << 0u << "\"1.0\\n\"";
    QTest::newRow("NUL inside") << "printf '12\\0003'" << 0u << "\"12\\u00003\"";
}

void ProcessLookupTest::theOutputIsReadAsOneNumber()
{
    QFETCH(const QString, script);
    QFETCH(const quint32, pid);
    QFETCH(const QString, unreadable);
    replacePidof(script);
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.processNameToPid(QStringLiteral("name")), pid);
    QStringList expected;
    if (!unreadable.isEmpty()) {
        expected.append(logged(QStringLiteral("Unable to covert string ( %1 ) to integer").arg(unreadable)));
    }
    QCOMPARE(mLog->takeDescriptions(), expected);
}

void ProcessLookupTest::theOutputOfAFailureIsItsErrorText_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("errorText");
    QTest::newRow("status 1") << "exit 1"
                              << "\"\"";
    QTest::newRow("status 255") << "exit 255"
                                << "\"\"";
    QTest::newRow("a number all the same") << "echo 4711; exit 1"
                                           << "\"\"";
    QTest::newRow("error text") << "echo 'no such thing' >&2; echo more >&2; exit 2"
                                << "\"no such thing\\nmore\\n\"";
    QTest::newRow("killed") << "echo 4711; echo dying >&2; kill -KILL $$"
                            << "\"dying\\n\"";
    QTest::newRow("crashed") << "echo 4711; kill -SEGV $$"
                             << "\"\"";
}

void ProcessLookupTest::theOutputOfAFailureIsItsErrorText()
{
    QFETCH(const QString, script);
    QFETCH(const QString, errorText);
    replacePidof(script);
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.processNameToPid(QStringLiteral("name")), cNotFound);
    QCOMPARE(mLog->takeDescriptions(),
             QStringList{logged(QStringLiteral("Unable to find process with name \"name\" %1").arg(errorText))});
}

void ProcessLookupTest::aMissingProgramIsAFailure()
{
    const QTemporaryDir empty;
    qputenv("PATH", empty.path().toLocal8Bit());
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.processNameToPid(QStringLiteral("name")), cNotFound);
    QCOMPARE(mLog->takeDescriptions(),
             QStringList{logged(QStringLiteral("Unable to find process with name \"name\" \"\""))});
}

void ProcessLookupTest::theBusIsNotNeeded()
{
    replacePidof(QStringLiteral("echo 4711"));
    mService.release();
    PrivateBus::deliver();
    const TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.processNameToPid(QStringLiteral("name")), 4711u);
}

void ProcessLookupTest::isCallableOnAConstConnector()
{
    QVERIFY((std::is_same_v<decltype(&TelvaroTaskSwitcherDBusConnector::processNameToPid),
                            std::uint32_t (TelvaroTaskSwitcherDBusConnector::*)(const QString&) const>));
}

void ProcessLookupTest::surfacingMakesTheViewOfTheProcessCurrent()
{
    replacePidof(QStringLiteral("echo 4711"));
    setViews({makeView(QStringLiteral("a"), {}, 0, 1), makeView(QStringLiteral("b"), {}, 0, 4711),
              makeView(QStringLiteral("c"), {}, 0, 4711)});
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    connector.surfaceToTop(QStringLiteral("name"));
    QCOMPARE(mService.takeDescriptions(), (QStringList{getViewsCall(), setCurrentViewCall(QStringLiteral("b"))}));
}

void ProcessLookupTest::surfacingAnUnknownProcessWritesNothing()
{
    setViews({makeView(QStringLiteral("a"), {}, 0, 1)});
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    connector.surfaceToTop(QStringLiteral("no-such-process"));
    QCOMPARE(mLog->takeDescriptions(),
             (QStringList{logged(QStringLiteral("Unable to find process with name \"no-such-process\" \"\"")),
                          warning(QStringLiteral("pidToTaskSwitcherEntry(uint32_t)"), cPidNotMatched)}));
    QCOMPARE(mService.takeDescriptions(), QStringList{getViewsCall()});
}

void ProcessLookupTest::surfacingLooksSpecialIdsUpToo_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<quint32>("pid");
    QTest::newRow("not found") << "exit 1" << cNotFound;
    QTest::newRow("unclear") << "echo 1 2" << 0u;
}

void ProcessLookupTest::surfacingLooksSpecialIdsUpToo()
{
    QFETCH(const QString, script);
    QFETCH(const quint32, pid);
    replacePidof(script);
    setViews({makeView(QStringLiteral("special"), {}, 0, pid)});
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    connector.surfaceToTop(QStringLiteral("name"));
    QCOMPARE(mLog->take().size(), 1);
    QCOMPARE(mService.takeDescriptions(), (QStringList{getViewsCall(), setCurrentViewCall(QStringLiteral("special"))}));
}

void ProcessLookupTest::theCurrentViewsProcessIsRecognised()
{
    replacePidof(QStringLiteral("echo 4711"));
    setViews({makeView(QStringLiteral("a"), {}, 0, 1), makeView(QStringLiteral("b"), {}, 0, 4711)},
             QStringLiteral("b"));
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.isCurrentView(QStringLiteral("name")));
    QCOMPARE(mService.takeDescriptions(), (QStringList{getViewsCall(), getCurrentViewCall()}));
}

void ProcessLookupTest::anotherProcessIsNotTheCurrentViews()
{
    replacePidof(QStringLiteral("echo 4711"));
    setViews({makeView(QStringLiteral("a"), {}, 0, 1), makeView(QStringLiteral("b"), {}, 0, 4711)},
             QStringLiteral("a"));
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(!connector.isCurrentView(QStringLiteral("name")));
}

void ProcessLookupTest::anUnknownProcessIsNotTheCurrentViews()
{
    setViews({makeView(QStringLiteral("a"), {}, 0, 1), makeView(QStringLiteral("b"), {}, 0, cNotFound)},
             QStringLiteral("a"));
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(!connector.isCurrentView(QStringLiteral("no-such-process")));
    mService.setCurrentView(QStringLiteral("b"));
    QVERIFY(connector.isCurrentView(QStringLiteral("no-such-process")));
    const QString message = logged(QStringLiteral("Unable to find process with name \"no-such-process\" \"\""));
    QCOMPARE(mLog->takeDescriptions(), (QStringList{message, message}));
}

void ProcessLookupTest::anUnclearProcessEqualsACurrentViewThatCannotBeRead()
{
    replacePidof(QStringLiteral("echo 1 2"));
    mService.release();
    PrivateBus::deliver();
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(connector.isCurrentView(QStringLiteral("name")));
    QCOMPARE(mLog->takeDescriptions(),
             (QStringList{logged(QStringLiteral("Unable to covert string ( \"1 2\\n\" ) to integer")),
                          warning(QStringLiteral("getViews()"), QStringLiteral("Invalid DBus interface!")),
                          notRegistered()}));
}

void ProcessLookupTest::anUnknownProcessDiffersFromACurrentViewThatCannotBeRead()
{
    replacePidof(QStringLiteral("exit 1"));
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(!connector.isCurrentView(QStringLiteral("name")));
    QCOMPARE(mLog->takeDescriptions(),
             (QStringList{logged(QStringLiteral("Unable to find process with name \"name\" \"\"")),
                          warning(QStringLiteral("getCurrentView()"),
                                  QStringLiteral("current view not found in all views list"))}));
}

TELVARO_TEST_MAIN(ProcessLookupTest)
#include "ProcessLookupTest.moc"
