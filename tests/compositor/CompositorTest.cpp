// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorTest.h"

#include "CompositorBus.h"

#include <stdexcept>

void CompositorTest::init()
{
    mMostComplaints = 0;
    mCompositor = std::make_unique<CompositorProcess>();
    startCompositor();
    mMonitor = std::make_unique<PropertyMonitor>();
}

void CompositorTest::cleanup()
{
    mMonitor.reset();
    QVERIFY(mCompositor->isRunning());
    QCOMPARE(mCompositor->end(), 0);
    QCOMPARE(mCompositor->sockets(), QStringList());
    const QByteArray errors = mCompositor->errors();
    if (mMostComplaints > 0) {
        QVERIFY2(errors.count('\n') <= mMostComplaints, errors.left(2000));
    } else {
        QCOMPARE(errors, QByteArray());
    }
    mCompositor.reset();
}

void CompositorTest::startCompositor()
{
    mCompositor->start();
}

void CompositorTest::expectComplaints(int mostLines)
{
    mMostComplaints = mostLines;
}

std::unique_ptr<LineClient> CompositorTest::testClient()
{
    return std::make_unique<LineClient>(QStringLiteral(TELVARO_TEST_CLIENT), mCompositor->clientEnvironment());
}

std::unique_ptr<LineClient> CompositorTest::protocolClient()
{
    return std::make_unique<LineClient>(QStringLiteral(TELVARO_PROTOCOL_CLIENT), mCompositor->clientEnvironment());
}

std::unique_ptr<LineClient> CompositorTest::foreignClient(const QString& program)
{
    return std::make_unique<LineClient>(program, mCompositor->clientEnvironment());
}

QImage CompositorTest::screenShot()
{
    const QString path = CompositorBus::callChecked(CompositorBus::cScreenShotPath, CompositorBus::cScreenShot,
                                                    QStringLiteral("ScreenShot"), {mPictures.path()})
                             .value(0)
                             .toString();
    QImage image;
    if (!image.load(path, "PNG")) {
        throw std::runtime_error("no picture in " + path.toStdString());
    }
    return image.convertToFormat(QImage::Format_RGB32);
}
