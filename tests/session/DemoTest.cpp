// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ChildProcess.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

namespace {

constexpr int cDemoDeadline = 120000;

QString addTo(const QString& path)
{
    return QStringLiteral(TELVARO_PROGRAMS ":") + path;
}

} // namespace

class DemoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyStepDoesWhatItShouldAndLeavesItsPicture();
    void anInterruptedDemoEndsWhatItStarted();
    void aStepThatFailsFailsTheDemo();

private:
    void start(ChildProcess& demo, const QString& notesProgram);
    QString picturesPath() const;
    QImage picture(const char* name) const;

    QTemporaryDir mDirectory;
};

void DemoTest::start(ChildProcess& demo, const QString& notesProgram)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"), addTo(environment.value(QStringLiteral("PATH"))));
    demo.setProcessEnvironment(environment);
    demo.setProcessChannelMode(QProcess::MergedChannels);
    demo.run(QStringLiteral(TELVARO_PROGRAMS "/telvaro-session"),
             {QStringLiteral("--headless"), QStringLiteral("--size"), QStringLiteral("1024x600"), QStringLiteral("--"),
              QStringLiteral(TELVARO_DEMO_STEPS), picturesPath(), notesProgram});
}

QString DemoTest::picturesPath() const
{
    return mDirectory.filePath(QStringLiteral("pictures"));
}

QImage DemoTest::picture(const char* name) const
{
    const QStringList files =
        QDir(picturesPath()).entryList({QStringLiteral("[0-9][0-9]-%1.png").arg(QString::fromUtf8(name))});
    return files.size() == 1 ? QImage(QDir(picturesPath()).filePath(files.constFirst())) : QImage();
}

void DemoTest::everyStepDoesWhatItShouldAndLeavesItsPicture()
{
    ChildProcess demo;
    start(demo, QStringLiteral(TELVARO_NOTES));
    QVERIFY(demo.waitForFinished(cDemoDeadline));
    const QString output = QString::fromUtf8(demo.readAll());
    QVERIFY2(demo.exitStatus() == QProcess::NormalExit && demo.exitCode() == 0, qPrintable(output));

    for (const char* name :
         {"views", "switched", "overlay", "overlay-hidden", "next", "next-wrapped", "process-on-top", "portrait",
          "landscape", "full-screen", "screen-saver", "screen-saver-ended", "notification"}) {
        QVERIFY2(picture(name).size() == QSize(1024, 600), name);
    }
    QVERIFY(picture("switched") != picture("views"));
    QVERIFY(picture("overlay") != picture("overlay-hidden"));
    QVERIFY(picture("next") != picture("next-wrapped"));
    QVERIFY(picture("portrait") != picture("landscape"));
    QVERIFY(picture("full-screen") != picture("landscape"));
    QVERIFY(picture("notification") != picture("screen-saver-ended"));
    QImage black(1024, 600, picture("screen-saver").format());
    black.fill(Qt::black);
    QCOMPARE(picture("screen-saver"), black);

    // telvaroctl received the signal of its own write.
    for (const char* line : {"currentViewChanged [0-9a-f-]{36} \\S+", "viewsChanged", "screenOrientationChanged 90",
                             "fullScreenChanged true", "screenSaverActiveChanged true"}) {
        const QRegularExpression watched(QStringLiteral("^   watch: %1$").arg(QString::fromUtf8(line)),
                                         QRegularExpression::MultilineOption);
        QVERIFY2(output.contains(watched), line);
    }
    QVERIFY(output.contains(picturesPath()));
}

void DemoTest::anInterruptedDemoEndsWhatItStarted()
{
    ChildProcess demo;
    start(demo, QStringLiteral(TELVARO_NOTES));
    const QRegularExpression flowerName(QStringLiteral("demo-flower-[0-9]+"));
    QString flower;
    while (flower.isEmpty()) {
        flower = flowerName.match(QString::fromUtf8(demo.readOutputLine())).captured();
    }
    QCOMPARE(QProcess::execute(QStringLiteral("pidof"), {flower}), 0);
    demo.terminate();
    QVERIFY(demo.waitForFinished(ChildProcess::cDeadline));
    QVERIFY(demo.exitCode() != 0);
    QTRY_COMPARE_WITH_TIMEOUT(QProcess::execute(QStringLiteral("pidof"), {flower}), 1, ChildProcess::cDeadline);
}

void DemoTest::aStepThatFailsFailsTheDemo()
{
    qputenv("DEMO_DEADLINE", "1");
    ChildProcess demo;
    start(demo, QStringLiteral("/bin/false"));
    QVERIFY(demo.waitForFinished(cDemoDeadline));
    QVERIFY(demo.exitCode() != 0);
}

QTEST_GUILESS_MAIN(DemoTest)

#include "DemoTest.moc"
