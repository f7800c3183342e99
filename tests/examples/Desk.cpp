// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Desk.h"

#include "PrivateBus.h"

#include <QFile>
#include <QProcessEnvironment>
#include <QTest>

#include <stdexcept>

Desk::Desk()
{
    mCompositor.environment().insert(QStringLiteral("DISPLAY"), mDesktop.display());
    mCompositor.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    mCompositor.start({QStringLiteral("--fullscreen-window")});
    PrivateBus::deliver();
    mTaskSwitcher = std::make_unique<TelvaroTaskSwitcherDBusConnector>();
    mScreenShot = std::make_unique<TelvaroScreenShotDBusConnector>();
}

std::unique_ptr<ChildProcess> Desk::start(const QString& program, const QStringList& arguments)
{
    auto process = std::make_unique<ChildProcess>();
    QProcessEnvironment environment = mCompositor.clientEnvironment();
    environment.insert(QStringLiteral("QT_QUICK_BACKEND"), QStringLiteral("software"));
    environment.insert(QStringLiteral("QML2_IMPORT_PATH"), QStringLiteral(TELVARO_QML_IMPORT_PATH));
    process->setProcessEnvironment(environment);
    process->run(program, arguments);
    return process;
}

TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry Desk::waitForCurrent(const QString& appId)
{
    TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry current;
    const bool found = QTest::qWaitFor(
        [this, &appId, &current] {
            // xdotool warns if nothing is found.
            if (!mTaskSwitcher->getViews().isEmpty()) {
                current = mTaskSwitcher->getCurrentView();
            }
            return current.appId == appId;
        },
        ChildProcess::cDeadline);
    if (!found) {
        throw std::runtime_error("not current: " + appId.toStdString());
    }
    return current;
}

void Desk::click(const QPoint& position)
{
    mDesktop.movePointer(position.x(), position.y());
    mDesktop.click();
}

void Desk::press(const QString& key)
{
    mDesktop.key(key);
}

QImage Desk::picture()
{
    const std::optional<QString> path = mScreenShot->captureScreenShot(mPictures.path());
    if (!path) {
        throw std::runtime_error("no screenshot");
    }
    const QImage picture(*path);
    QFile::remove(*path);
    return picture;
}

std::optional<QPoint> Desk::findRow(const QColor& color, int length)
{
    const QImage screen = picture();
    for (int y = 0; y < screen.height(); ++y) {
        int start = 0;
        for (int x = 0; x < screen.width(); ++x) {
            if (screen.pixelColor(x, y) != color) {
                start = x + 1;
            } else if (x - start + 1 == length) {
                return QPoint(start + length / 2, y);
            }
        }
    }
    return {};
}

QPoint Desk::waitForRow(const QColor& color, int length)
{
    std::optional<QPoint> position;
    const bool found = QTest::qWaitFor(
        [this, &color, length, &position] {
            position = findRow(color, length);
            return position.has_value();
        },
        ChildProcess::cDeadline);
    if (!found) {
        throw std::runtime_error("nothing is " + color.name().toStdString());
    }
    return *position;
}
