// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Session.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTextStream>

#include <csignal>
#include <stdexcept>
#include <utility>

namespace {

const QString cRuntimeDirectory = QStringLiteral("XDG_RUNTIME_DIR");
const QString cWaylandDisplay = QStringLiteral("WAYLAND_DISPLAY");
const QString cPlatform = QStringLiteral("QT_QPA_PLATFORM");

constexpr int cFailure = 1;
constexpr int cUsage = 2;
constexpr int cCannotExecute = 127;
constexpr int cSignalBase = 128;

// Anybody in the session may do anything; nothing is started on demand, since no service but the session's is meant.
QString busConfiguration(const QString& directory)
{
    return QStringLiteral("<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
                          " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
                          "<busconfig>\n"
                          "  <type>session</type>\n"
                          "  <listen>unix:dir=%1</listen>\n"
                          "  <policy context=\"default\">\n"
                          "    <allow send_destination=\"*\" eavesdrop=\"true\"/>\n"
                          "    <allow eavesdrop=\"true\"/>\n"
                          "    <allow own=\"*\"/>\n"
                          "  </policy>\n"
                          "</busconfig>\n")
        .arg(directory);
}

// The compositor that belongs to this program, which in a build tree is the one beside it.
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

void Session::start()
{
    if (!mDirectory.isValid()) {
        throw std::runtime_error("cannot make a directory: " + mDirectory.errorString().toStdString());
    }
    startBus();
    startCompositor();
    for (SessionProcess* const program : {&mBus, &mCompositor}) {
        connect(program, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
                &Session::onBackgroundProgramEnded);
    }
}

void Session::startBus()
{
    const QString configurationPath = mDirectory.filePath(QStringLiteral("bus.conf"));
    QFile configuration(configurationPath);
    const QByteArray text = busConfiguration(mDirectory.path()).toUtf8();
    if (!configuration.open(QIODevice::WriteOnly) || configuration.write(text) != text.size()
        || !configuration.flush()) {
        throw std::runtime_error("cannot write " + configurationPath.toStdString() + ": "
                                 + configuration.errorString().toStdString());
    }
    // The daemon warns of limits that it cannot raise, which means nothing here.
    mBus.setProcessChannelMode(QProcess::SeparateChannels);
    mBus.setStandardErrorFile(mDirectory.filePath(QStringLiteral("bus.log")));
    mBus.start(QStringLiteral("dbus-daemon"),
               {QStringLiteral("--config-file=%1").arg(configurationPath), QStringLiteral("--nofork"),
                QStringLiteral("--nopidfile"), QStringLiteral("--nosyslog"), QStringLiteral("--print-address")});
    mBusAddress = mBus.readFirstLine();
}

void Session::startCompositor()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The compositor may itself be a window of the desktop's compositor, whose socket it finds by a whole path once
    // the directory is the session's own.
    const QString desktopDisplay = environment.value(cWaylandDisplay);
    if (!desktopDisplay.isEmpty() && QDir::isRelativePath(desktopDisplay)) {
        environment.insert(cWaylandDisplay, QDir(environment.value(cRuntimeDirectory)).filePath(desktopDisplay));
    }
    environment.insert(cRuntimeDirectory, mDirectory.path());
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), mBusAddress);
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), mBusAddress);
    const bool hasDisplay = !desktopDisplay.isEmpty() || environment.contains(QStringLiteral("DISPLAY"));
    if (mIsHeadless || (!hasDisplay && !environment.contains(cPlatform))) {
        environment.insert(cPlatform, QStringLiteral("offscreen"));
    }
    mCompositor.setProcessEnvironment(environment);
    mCompositor.start(compositorProgram(), mCompositorOptions);

    const QString line = readCompositorsLine();
    const QString expected = cWaylandDisplay + QLatin1Char('=');
    if (!line.startsWith(expected)) {
        throw std::runtime_error("the compositor said \"" + line.toStdString() + "\" instead of its socket's name");
    }
    mWaylandDisplay = line.mid(expected.size());
}

QString Session::readCompositorsLine()
{
    try {
        return mCompositor.readFirstLine();
    } catch (const std::runtime_error& error) {
        if (mCompositor.state() == QProcess::NotRunning && mCompositor.exitCode() == cUsage) {
            throw WrongUsage(error.what());
        }
        throw;
    }
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
    };
}

QProcessEnvironment Session::commandEnvironment() const
{
    QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
    // A program must not end up on the desktop instead of in the session.
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
    const auto* const program = qobject_cast<const SessionProcess*>(sender());
    QTextStream(stderr) << "telvaro-session: " << program->program() << " has ended\n";
    // Whatever the command makes of it, the session has failed.
    mCommand.disconnect(this);
    mCommand.terminate();
    Q_EMIT ended(cFailure);
}
