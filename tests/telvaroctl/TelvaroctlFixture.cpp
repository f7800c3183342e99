// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroctlFixture.h"

#include "ValueText.h"

namespace {

const QString cTaskSwitcherPath = QStringLiteral("/taskswitcher");
const QString cTaskSwitcherInterface = QStringLiteral("de.Telvaro.taskswitcher");

} // namespace

TelvaroctlFixture::TelvaroctlFixture()
{
    qputenv("TELVAROCTL_TIMEOUT", QByteArray::number(ChildProcess::cDeadline / 1000));
}

QString TelvaroctlFixture::program()
{
    return QStringLiteral(TELVAROCTL);
}

void TelvaroctlFixture::start(ChildProcess& process, const QStringList& arguments)
{
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.run(program(), arguments);
}

TelvaroctlFixture::Result TelvaroctlFixture::finish(ChildProcess& process)
{
    process.waitForFinished(ChildProcess::cDeadline);
    const bool ended = process.state() == QProcess::NotRunning && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

TelvaroctlFixture::Result TelvaroctlFixture::telvaroctl(const QStringList& arguments, const QString& directory)
{
    ChildProcess process;
    process.setWorkingDirectory(directory);
    start(process, arguments);
    return finish(process);
}

TelvaroctlFixture::Result TelvaroctlFixture::telvaroctl(const char* line)
{
    return telvaroctl(words(line));
}

QStringList TelvaroctlFixture::words(const char* line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

TelvaroctlFixture::View TelvaroctlFixture::view(const char* uuid, const char* appId, uint32_t pid, uint32_t sortIndex,
                                                const char* title)
{
    View result;
    result.uuid = QString::fromUtf8(uuid);
    result.appId = QString::fromUtf8(appId);
    result.info1 = QStringLiteral("one");
    result.pid = pid;
    result.sortIndex = sortIndex;
    result.attributes.insert(QStringLiteral("title"), QString::fromUtf8(title));
    return result;
}

QString TelvaroctlFixture::message(const QString& text)
{
    return QStringLiteral("telvaroctl: %1\n").arg(text);
}

QString TelvaroctlFixture::message(const char* text)
{
    return message(QString::fromUtf8(text));
}

QString TelvaroctlFixture::notOnTheBus()
{
    return message("the service " TELVARO_SERVICE_NAME " is not on the bus");
}

std::shared_ptr<void> TelvaroctlFixture::releaseName()
{
    mService.release();
    return std::shared_ptr<void>(nullptr, [this](void*) {
        mService.own();
    });
}

void TelvaroctlFixture::setTwoViews()
{
    mService.setViews(
        ValueText::views({view("u-1", "notes", 4711, 0, "Shopping"), view("u-2", "notes", 4711, 1, "Recipes")}));
    mService.setCurrentView(QStringLiteral("u-1"));
}

void TelvaroctlFixture::emitViews(const QList<View>& views)
{
    mService.emitSignal(ServiceSignal::propertiesChanged(
        cTaskSwitcherPath, cTaskSwitcherInterface, QStringLiteral("{'views': <%1>}").arg(ValueText::views(views))));
}

void TelvaroctlFixture::emitCurrentView(const char* uuid)
{
    mService.emitSignal(
        ServiceSignal::propertiesChanged(cTaskSwitcherPath, cTaskSwitcherInterface,
                                         QStringLiteral("{'currentView': <'%1'>}").arg(QString::fromUtf8(uuid))));
}

QStringList TelvaroctlFixture::takeWrites()
{
    QStringList writes;
    const QList<RecordedCall> calls = mService.takeCalls();
    for (const RecordedCall& call : calls) {
        if (call.member != QLatin1String("Get") && call.member != QLatin1String("Introspect")) {
            writes.append(call.description());
        }
    }
    return writes;
}

QString TelvaroctlFixture::taskSwitcherSet(const char* uuid)
{
    return QStringLiteral("/taskswitcher org.freedesktop.DBus.Properties.Set ssv('de.Telvaro.taskswitcher', "
                          "'currentView', <'%1'>)")
        .arg(QString::fromUtf8(uuid));
}
