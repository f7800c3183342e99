// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Session.h"

#include "CompositorOptions.h"
#include "ExitStatus.h"
#include "RunningSession.h"
#include "ShellWord.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTextStream>
#include <QUrl>

#include <csignal>
#include <utility>

namespace {

const QString cRuntimeDirectory = QStringLiteral("XDG_RUNTIME_DIR");
const QString cWaylandDisplay = QStringLiteral("WAYLAND_DISPLAY");
const QString cPlatform = QStringLiteral("QT_QPA_PLATFORM");
// Not for programs in the session, where toolkits would choose the desktop's X server.
const QString cDisplay = QStringLiteral("DISPLAY");

const QString cExitStatus = QStringLiteral("EXIT_STATUS=");

// The exit statuses of shells.
constexpr int cCannotExecute = 127;
constexpr int cSignalBase = 128;

/// Prefers the compositor beside this program, which in a build tree is the one of the same build.
QString compositorProgram()
{
    const QString name = QStringLiteral("telvaro-compositor");
    const QString beside = QDir(QCoreApplication::applicationDirPath()).filePath(name);
    return QFileInfo(beside).isExecutable() ? beside : name;
}

} // namespace

Session::Session(QStringList compositorOptions, bool isHeadless, QStringList command, QObject* parent)
    : QObject(parent)
    , mCompositorOptions(std::move(compositorOptions))
    , mIsHeadless(isHeadless)
    , mCommandLine(std::move(command))
    , mDirectory(QDir::temp().filePath(QStringLiteral("telvaro-session-XXXXXX")))
    , mBus(SessionProcess::Role::Background)
    , mCompositor(SessionProcess::Role::Background)
    , mCommand(SessionProcess::Role::Command)
{
    connect(&mBus, &SessionProcess::ready, this, [this](const QString& address) {
        mBusAddress = address;
        startCompositor();
    });
    connect(&mCompositor, &SessionProcess::ready, this, &Session::onCompositorReady);
    connect(&mBus, &SessionProcess::ended, this, [this](const QString& reason) {
        onProgramEnded(mBusAddress.isEmpty() ? reason + lastBusMessage() : reason);
    });
    connect(&mCompositor, &SessionProcess::ended, this, &Session::onProgramEnded);
}

Session::~Session()
{
    for (SessionProcess* const program : {&mCommand, &mCompositor, &mBus}) {
        program->disconnect(this);
        program->stop();
    }
}

MaybeError Session::start()
{
    if (!mDirectory.isValid()) {
        return Error{QStringLiteral("cannot make a directory: %1").arg(mDirectory.errorString())};
    }
    const QString configurationPath = mDirectory.filePath(QStringLiteral("bus.conf"));
    QFile configuration(QStringLiteral(":/bus.conf"));
    if (!configuration.copy(configurationPath)) {
        return Error{QStringLiteral("cannot write %1: %2").arg(configurationPath, configuration.errorString())};
    }
    // The daemon warns of resource limits that it may not raise, which a private bus does not need.
    mBus.setProcessChannelMode(QProcess::SeparateChannels);
    mBus.setStandardErrorFile(busLog());
    mBus.startUntilReady(QStringLiteral("dbus-daemon"),
                         {QStringLiteral("--config-file=%1").arg(configurationPath),
                          QStringLiteral("--address=unix:dir=%1")
                              .arg(QString::fromLatin1(QUrl::toPercentEncoding(mDirectory.path(), "/", "~"))),
                          QStringLiteral("--nofork"), QStringLiteral("--nopidfile"), QStringLiteral("--nosyslog"),
                          QStringLiteral("--print-address")});
    return {};
}

QString Session::busLog() const
{
    return mDirectory.filePath(QStringLiteral("bus.log"));
}

QString Session::lastBusMessage() const
{
    QFile log(busLog());
    const QString text = log.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(log.readAll()).trimmed() : QString();
    return text.isEmpty() ? text : QStringLiteral(": ") + text.section(QLatin1Char('\n'), -1);
}

void Session::startCompositor()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The compositor may be a client of the desktop's compositor. It needs the absolute path of that socket, because
    // XDG_RUNTIME_DIR becomes the session's own.
    const QString desktopDisplay = environment.value(cWaylandDisplay);
    if (!desktopDisplay.isEmpty() && QDir::isRelativePath(desktopDisplay)) {
        environment.insert(cWaylandDisplay, QDir(environment.value(cRuntimeDirectory)).filePath(desktopDisplay));
    }
    environment.insert(cRuntimeDirectory, mDirectory.path());
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), mBusAddress);
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), mBusAddress);
    const bool hasDisplay = !desktopDisplay.isEmpty() || !environment.value(cDisplay).isEmpty();
    mIsDisplayUsed = !mIsHeadless && hasDisplay && !environment.contains(cPlatform);
    if (mIsHeadless || (!hasDisplay && !environment.contains(cPlatform))) {
        environment.insert(cPlatform, QStringLiteral("offscreen"));
    }
    mCompositor.setProcessEnvironment(environment);
    mCompositor.startUntilReady(compositorProgram(),
                                mCompositorOptions
                                    + QStringList(QStringLiteral("--") + CompositorOptions::cRemoteControl));
}

void Session::onCompositorReady(const QString& line)
{
    const QString expected = cWaylandDisplay + QLatin1Char('=');
    if (!line.startsWith(expected)) {
        fail(QStringLiteral("the compositor printed \"%1\" instead of the name of its socket").arg(line));
        return;
    }
    mWaylandDisplay = line.mid(expected.size());
    Q_EMIT ready();
}

QStringList Session::environment() const
{
    return {
        QStringLiteral("DBUS_SESSION_BUS_ADDRESS=") + mBusAddress,
        QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS=") + mBusAddress,
        cRuntimeDirectory + QLatin1Char('=') + mDirectory.path(),
        cWaylandDisplay + QLatin1Char('=') + mWaylandDisplay,
        QStringLiteral("XDG_SESSION_TYPE=wayland"),
        cPlatform + QStringLiteral("=wayland"),
        QStringLiteral("GDK_BACKEND=wayland"),
        RunningSession::cProcessVariable + QStringLiteral("=%1").arg(QCoreApplication::applicationPid()),
    };
}

QString Session::environmentScript() const
{
    QString result;
    const QStringList variables = environment();
    for (const QString& variable : variables) {
        const int separator = variable.indexOf(QLatin1Char('='));
        result +=
            QStringLiteral("export %1=%2\n").arg(variable.left(separator), shellWord(variable.mid(separator + 1)));
    }
    result += QStringLiteral("unset %1\n").arg(cDisplay);
    return result;
}

QProcessEnvironment Session::commandEnvironment() const
{
    QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
    result.remove(cDisplay);
    const QStringList variables = environment();
    for (const QString& variable : variables) {
        const int separator = variable.indexOf(QLatin1Char('='));
        result.insert(variable.left(separator), variable.mid(separator + 1));
    }
    return result;
}

void Session::run()
{
    if (mCommandLine.isEmpty()) {
        return;
    }
    connect(&mCommand, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            QTextStream(stderr) << "telvaro-session: cannot start " << mCommand.program() << ": "
                                << mCommand.errorString() << '\n';
            Q_EMIT ended(cCannotExecute);
        }
    });
    connect(&mCommand, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [this](int exitCode, QProcess::ExitStatus exitStatus) {
                Q_EMIT ended(exitStatus == QProcess::NormalExit ? exitCode : cSignalBase + exitCode);
            });
    mCommand.setProcessEnvironment(commandEnvironment());
    mCommand.start(mCommandLine.constFirst(), mCommandLine.mid(1));
}

void Session::end(int signal)
{
    if (mCommand.state() == QProcess::NotRunning) {
        Q_EMIT ended(mCommandLine.isEmpty() ? Done : cSignalBase + signal);
    } else if (signal != SIGINT) {
        mCommand.terminate();
    }
}

void Session::onProgramEnded(const QString& reason)
{
    // The session has ended, whatever the command's own status will be.
    mCommand.disconnect(this);
    mCommand.terminate();
    if (mWaylandDisplay.isEmpty()) {
        failToStart(reason);
        return;
    }
    // A script may end the session with a status that the compositor prints.
    const QString line = QString::fromLocal8Bit(mCompositor.readLine()).trimmed();
    if (line.startsWith(cExitStatus)) {
        Q_EMIT ended(line.midRef(cExitStatus.size()).toInt());
    } else {
        fail(reason);
    }
}

void Session::failToStart(const QString& reason)
{
    if (mCompositor.exitStatus() == QProcess::NormalExit && mCompositor.exitCode() == Usage) {
        // The compositor has printed what is wrong with its options.
        Q_EMIT ended(Usage);
    } else {
        fail(mIsDisplayUsed ? reason + QStringLiteral("; without a usable display, add --headless") : reason);
    }
}

void Session::fail(const QString& reason)
{
    QTextStream(stderr) << "telvaro-session: " << reason << '\n';
    Q_EMIT ended(Failed);
}
