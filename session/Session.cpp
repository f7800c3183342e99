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

Session::Session(QStringList compositorOptions, bool isHeadless, QObject* parent)
    : QObject(parent)
    , mCompositorOptions(std::move(compositorOptions))
    , mIsHeadless(isHeadless)
    , mDirectory(QDir::temp().filePath(QStringLiteral("telvaro-session-XXXXXX")))
    , mBus(SessionProcess::Role::Background)
    , mCompositor(SessionProcess::Role::Background)
    , mCommand(SessionProcess::Role::Command)
{
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
    if (const MaybeError error = startBus()) {
        return error;
    }
    if (const MaybeError error = startCompositor()) {
        return error;
    }
    for (SessionProcess* const program : {&mBus, &mCompositor}) {
        connect(program, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
                &Session::onBackgroundProgramEnded);
    }
    return {};
}

bool Session::areOptionsRejected() const
{
    return mCompositor.state() == QProcess::NotRunning && mCompositor.exitStatus() == QProcess::NormalExit
        && mCompositor.exitCode() == Usage;
}

MaybeError Session::startBus()
{
    const QString configurationPath = mDirectory.filePath(QStringLiteral("bus.conf"));
    QFile configuration(QStringLiteral(":/bus.conf"));
    if (!configuration.copy(configurationPath)) {
        return Error{QStringLiteral("cannot write %1: %2").arg(configurationPath, configuration.errorString())};
    }
    // The daemon warns of resource limits that it may not raise, which a private bus does not need.
    mBus.setProcessChannelMode(QProcess::SeparateChannels);
    mBus.setStandardErrorFile(mDirectory.filePath(QStringLiteral("bus.log")));
    mBus.start(QStringLiteral("dbus-daemon"),
               {QStringLiteral("--config-file=%1").arg(configurationPath),
                QStringLiteral("--address=unix:dir=%1")
                    .arg(QString::fromLatin1(QUrl::toPercentEncoding(mDirectory.path(), "/", "~"))),
                QStringLiteral("--nofork"), QStringLiteral("--nopidfile"), QStringLiteral("--nosyslog"),
                QStringLiteral("--print-address")});
    const Result<QString> line = mBus.readFirstLine();
    if (const auto* const error = std::get_if<Error>(&line)) {
        return *error;
    }
    mBusAddress = std::get<QString>(line);
    return {};
}

MaybeError Session::startCompositor()
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
    const bool hasDisplay = !desktopDisplay.isEmpty() || !environment.value(QStringLiteral("DISPLAY")).isEmpty();
    const bool isDisplayUsed = !mIsHeadless && hasDisplay && !environment.contains(cPlatform);
    if (mIsHeadless || (!hasDisplay && !environment.contains(cPlatform))) {
        environment.insert(cPlatform, QStringLiteral("offscreen"));
    }
    mCompositor.setProcessEnvironment(environment);
    mCompositor.start(compositorProgram(),
                      mCompositorOptions + QStringList(QStringLiteral("--") + CompositorOptions::cRemoteControl));

    const Result<QString> line = mCompositor.readFirstLine();
    if (const auto* const error = std::get_if<Error>(&line)) {
        return isDisplayUsed ? Error{error->text + QStringLiteral("; without a usable display, add --headless")}
                             : *error;
    }
    const QString expected = cWaylandDisplay + QLatin1Char('=');
    if (!std::get<QString>(line).startsWith(expected)) {
        return Error{QStringLiteral("the compositor printed \"%1\" instead of the name of its socket")
                         .arg(std::get<QString>(line))};
    }
    mWaylandDisplay = std::get<QString>(line).mid(expected.size());
    return {};
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
    return result;
}

QProcessEnvironment Session::commandEnvironment() const
{
    QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
    // Keeps toolkits from choosing the desktop's X server.
    result.remove(QStringLiteral("DISPLAY"));
    const QStringList variables = environment();
    for (const QString& variable : variables) {
        const int separator = variable.indexOf(QLatin1Char('='));
        result.insert(variable.left(separator), variable.mid(separator + 1));
    }
    return result;
}

void Session::run(const QStringList& command)
{
    connect(&mCommand, &QProcess::errorOccurred, this, [this, command](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            QTextStream(stderr) << "telvaro-session: cannot start " << command.constFirst() << ": "
                                << mCommand.errorString() << '\n';
            Q_EMIT ended(cCannotExecute);
        }
    });
    connect(&mCommand, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [this](int exitCode, QProcess::ExitStatus exitStatus) {
                Q_EMIT ended(exitStatus == QProcess::NormalExit ? exitCode : cSignalBase + exitCode);
            });
    mCommand.setProcessEnvironment(commandEnvironment());
    mCommand.start(command.constFirst(), command.mid(1));
}

void Session::end(int signal)
{
    if (mCommand.state() == QProcess::NotRunning) {
        Q_EMIT ended(0);
    } else if (signal != SIGINT) {
        mCommand.terminate();
    }
}

void Session::onBackgroundProgramEnded()
{
    // The session has ended, whatever the command's own status will be.
    mCommand.disconnect(this);
    mCommand.terminate();
    // A script may end the session with a status that the compositor prints.
    const QString line = QString::fromLocal8Bit(mCompositor.readLine()).trimmed();
    if (line.startsWith(cExitStatus)) {
        Q_EMIT ended(line.midRef(cExitStatus.size()).toInt());
        return;
    }
    const auto* const program = qobject_cast<const SessionProcess*>(sender());
    QTextStream(stderr) << "telvaro-session: " << program->program() << " has ended with " << program->ending() << '\n';
    Q_EMIT ended(Failed);
}
