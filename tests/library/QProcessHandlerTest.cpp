// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "QProcessHandler.h"
#include "ChildProcess.h"
#include "LogCapture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QObject>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

const QString cShell = QStringLiteral("/bin/sh");

QStringList script(const QString& text)
{
    return {QStringLiteral("-c"), text};
}

int openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
}

// Children of this process, including zombies.
QStringList childProcesses()
{
    QStringList found;
    const QString parent = QString::number(getpid());
    for (const QString& process : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile status(QStringLiteral("/proc/%1/stat").arg(process));
        if (status.open(QIODevice::ReadOnly)) {
            const QString line = QString::fromUtf8(status.readAll());
            if (line.mid(line.lastIndexOf(QLatin1Char(')'))).section(QLatin1Char(' '), 2, 2) == parent) {
                found.append(line);
            }
        }
    }
    return found;
}

} // namespace

class QProcessHandlerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void anIdleHandlerHasNoOutputs();
    void aSuccessfulRunIsZero();
    void theOutputIsTakenExactly_data();
    void theOutputIsTakenExactly();
    void theChannelsStayApart();
    void argumentsAreOneWordEach();
    void anyOtherExitIsItsStatusOrMinusOne_data();
    void anyOtherExitIsItsStatusOrMinusOne();
    void aProgramThatCannotBeStartedIsNotZero_data();
    void aProgramThatCannotBeStartedIsNotZero();
    void anUnknownProcessIsNotZeroForPidof();
    void theNextRunReplacesTheOutputs();
    void theOutputsStayUntilThen();
    void theInputIsEmpty();
    void muchOnBothChannelsIsTakenWhole();
    void aProgramThatClosesItsOutputsIsWaitedFor();
    void aGrandchildThatKeepsTheOutputsIsNotWaitedFor();
    void aSlowProgramIsWaitedFor();
    void runsWithoutAnEventLoopInAnyThread();
    void leavesNoDescriptorsAndNoChildren();

private:
    std::unique_ptr<LogCapture> mLog;
};

void QProcessHandlerTest::init()
{
    mLog = std::make_unique<LogCapture>();
}

// Failures are results and never logged.
void QProcessHandlerTest::cleanup()
{
    const QStringList messages = mLog->takeDescriptions();
    mLog.reset();
    QCOMPARE(messages, QStringList());
}

void QProcessHandlerTest::anIdleHandlerHasNoOutputs()
{
    const QProcessHandler handler;
    QCOMPARE(handler.getStandardOutput(), QString());
    QCOMPARE(handler.getStandardError(), QString());
}

void QProcessHandlerTest::aSuccessfulRunIsZero()
{
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(QStringLiteral("true"), {}), 0);
    QCOMPARE(handler.getStandardOutput(), QString());
    QCOMPARE(handler.getStandardError(), QString());
}

void QProcessHandlerTest::theOutputIsTakenExactly_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("output");
    QTest::newRow("number and line break") << "echo 4711"
                                           << "4711\n";
    QTest::newRow("no line break") << "printf 4711"
                                   << "4711";
    QTest::newRow("blanks") << "printf ' \\t\\n a \\r\\n\\n'"
                            << " \t\n a \r\n\n";
    QTest::newRow("beyond ASCII") << "printf '\\303\\244'" << QString::fromUtf8("\xC3\xA4");
    QTest::newRow("NUL inside") << "printf 'a\\000b'" << QString::fromLatin1("a\0b", 3);
}

void QProcessHandlerTest::theOutputIsTakenExactly()
{
    QFETCH(const QString, command);
    QFETCH(const QString, output);
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(cShell, script(command)), 0);
    QCOMPARE(handler.getStandardOutput(), output);
    QCOMPARE(handler.getStandardError(), QString());
    QCOMPARE(handler.startProcess(cShell, script(command + QStringLiteral(" >&2"))), 0);
    QCOMPARE(handler.getStandardOutput(), QString());
    QCOMPARE(handler.getStandardError(), output);
}

void QProcessHandlerTest::theChannelsStayApart()
{
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(cShell, script(QStringLiteral("echo a; echo b >&2; echo c; echo d >&2"))), 0);
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("a\nc\n"));
    QCOMPARE(handler.getStandardError(), QStringLiteral("b\nd\n"));
}

void QProcessHandlerTest::argumentsAreOneWordEach()
{
    QProcessHandler handler;
    const QStringList words{QStringLiteral("two words"), QString(), QStringLiteral("\"quoted\""),
                            QStringLiteral("$HOME"), QStringLiteral("*")};
    QCOMPARE(handler.startProcess(QStringLiteral("printf"), QStringList{QStringLiteral("%s|")} + words), 0);
    QCOMPARE(handler.getStandardOutput(), words.join(QLatin1Char('|')) + QLatin1Char('|'));
}

void QProcessHandlerTest::anyOtherExitIsItsStatusOrMinusOne_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("status");
    QTest::newRow("status 1") << "exit 1" << 1;
    QTest::newRow("status 255") << "exit 255" << 255;
    QTest::newRow("killed") << "kill -KILL $$" << -1;
    QTest::newRow("terminated") << "kill -TERM $$" << -1;
    QTest::newRow("crashed") << "kill -SEGV $$" << -1;
}

void QProcessHandlerTest::anyOtherExitIsItsStatusOrMinusOne()
{
    QFETCH(const QString, command);
    QFETCH(const int, status);
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(cShell, script(QStringLiteral("echo out; echo error >&2; ") + command)), status);
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("out\n"));
    QCOMPARE(handler.getStandardError(), QStringLiteral("error\n"));
}

void QProcessHandlerTest::aProgramThatCannotBeStartedIsNotZero_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("missing") << "no-such-program";
    QTest::newRow("missing path") << "/no/such/program";
    QTest::newRow("not executable") << "/dev/null";
    QTest::newRow("folder") << "/";
    QTest::newRow("empty") << "";
}

void QProcessHandlerTest::aProgramThatCannotBeStartedIsNotZero()
{
    QFETCH(const QString, program);
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(cShell, script(QStringLiteral("echo before; echo before >&2"))), 0);
    QVERIFY(handler.startProcess(program, {}) != 0);
    QCOMPARE(handler.getStandardOutput(), QString());
    QCOMPARE(handler.getStandardError(), QString());
}

void QProcessHandlerTest::anUnknownProcessIsNotZeroForPidof()
{
    QProcessHandler handler;
    QVERIFY(handler.startProcess(QStringLiteral("pidof"), {QStringLiteral("no-such-process")}) != 0);
}

void QProcessHandlerTest::theNextRunReplacesTheOutputs()
{
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(cShell, script(QStringLiteral("echo first; echo first >&2"))), 0);
    QCOMPARE(handler.startProcess(cShell, script(QStringLiteral("echo second"))), 0);
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("second\n"));
    QCOMPARE(handler.getStandardError(), QString());
}

void QProcessHandlerTest::theOutputsStayUntilThen()
{
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(cShell, script(QStringLiteral("echo out; echo error >&2"))), 0);
    for (int reading = 0; reading < 3; ++reading) {
        QCOMPARE(handler.getStandardOutput(), QStringLiteral("out\n"));
        QCOMPARE(handler.getStandardError(), QStringLiteral("error\n"));
    }
}

void QProcessHandlerTest::theInputIsEmpty()
{
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(cShell, script(QStringLiteral("cat; read line || echo end"))), 0);
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("end\n"));
}

void QProcessHandlerTest::muchOnBothChannelsIsTakenWhole()
{
    QProcessHandler handler;
    const QString pour = QStringLiteral("head -c 10000000 /dev/zero | tr '\\0' ");
    QCOMPARE(handler.startProcess(cShell, script(pour + QStringLiteral("e >&2; ") + pour + QStringLiteral("o"))), 0);
    QCOMPARE(handler.getStandardOutput().count(QLatin1Char('o')), 10000000);
    QCOMPARE(handler.getStandardError().count(QLatin1Char('e')), 10000000);
}

void QProcessHandlerTest::aProgramThatClosesItsOutputsIsWaitedFor()
{
    const QTemporaryDir directory;
    const QString record = directory.filePath(QStringLiteral("ended"));
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(cShell,
                                  script(QStringLiteral("echo 1; exec >&- 2>&-; sleep 0.1; echo > '%1'").arg(record))),
             0);
    QVERIFY(QFile::exists(record));
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("1\n"));
}

void QProcessHandlerTest::aGrandchildThatKeepsTheOutputsIsNotWaitedFor()
{
    const QTemporaryDir directory;
    const QString record = directory.filePath(QStringLiteral("grandchild"));
    QElapsedTimer timer;
    timer.start();
    QProcessHandler handler;
    const int status =
        handler.startProcess(cShell, script(QStringLiteral("sleep 600 & echo $! > '%1'; echo 1").arg(record)));
    const qint64 elapsed = timer.elapsed();
    QFile file(record);
    QVERIFY(file.open(QIODevice::ReadOnly));
    kill(file.readAll().trimmed().toInt(), SIGKILL);
    QCOMPARE(status, 0);
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("1\n"));
    QVERIFY2(elapsed < ChildProcess::cDeadline, qPrintable(QString::number(elapsed)));
}

void QProcessHandlerTest::aSlowProgramIsWaitedFor()
{
    QProcessHandler handler;
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(handler.startProcess(QStringLiteral("sleep"), {QStringLiteral("0.3")}), 0);
    QVERIFY(timer.elapsed() >= 300);
}

void QProcessHandlerTest::runsWithoutAnEventLoopInAnyThread()
{
    std::vector<QString> outputs(4);
    std::vector<std::thread> threads;
    for (QString& output : outputs) {
        threads.emplace_back([&output] {
            QProcessHandler handler;
            handler.startProcess(QStringLiteral("echo"), {QStringLiteral("1")});
            output = handler.getStandardOutput();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const QString& output : outputs) {
        QCOMPARE(output, QStringLiteral("1\n"));
    }
}

void QProcessHandlerTest::leavesNoDescriptorsAndNoChildren()
{
    const QStringList childrenBefore = childProcesses();
    const int descriptorsBefore = openDescriptors();
    for (int run = 0; run < 20; ++run) {
        QProcessHandler handler;
        handler.startProcess(QStringLiteral("true"), {});
        handler.startProcess(QStringLiteral("false"), {});
        handler.startProcess(QStringLiteral("no-such-program"), {});
        handler.startProcess(cShell, script(QStringLiteral("kill -KILL $$")));
    }
    QCOMPARE(openDescriptors(), descriptorsBefore);
    QCOMPARE(childProcesses(), childrenBefore);
}

QTEST_GUILESS_MAIN(QProcessHandlerTest)
#include "QProcessHandlerTest.moc"
