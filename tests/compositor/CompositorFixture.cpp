// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorFixture.h"

#include "CompositorBus.h"

#include <stdexcept>

void CompositorFixture::init()
{
    mMostComplaints = 0;
    mCompositor = std::make_unique<CompositorProcess>();
    startCompositor();
    mMonitor = std::make_unique<PropertyMonitor>();
}

void CompositorFixture::cleanup()
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

void CompositorFixture::startCompositor()
{
    mCompositor->start();
}

void CompositorFixture::expectComplaints(int mostLines)
{
    mMostComplaints = mostLines;
}

std::unique_ptr<LineClient> CompositorFixture::testClient()
{
    return std::make_unique<LineClient>(QStringLiteral(TELVARO_TEST_CLIENT), mCompositor->clientEnvironment());
}

std::unique_ptr<LineClient> CompositorFixture::protocolClient()
{
    return std::make_unique<LineClient>(QStringLiteral(TELVARO_PROTOCOL_CLIENT), mCompositor->clientEnvironment());
}

std::unique_ptr<WireClient> CompositorFixture::wireClient() const
{
    return std::make_unique<WireClient>(mCompositor->runtimeDirectory() + QLatin1Char('/') + mCompositor->display());
}

std::unique_ptr<LineClient> CompositorFixture::foreignClient(const QString& program)
{
    return std::make_unique<LineClient>(program, mCompositor->clientEnvironment());
}

QImage CompositorFixture::screenShot()
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

QRect CompositorFixture::difference(const QImage& one, const QImage& other)
{
    QRect rect;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y)) {
                rect |= QRect(x, y, 1, 1);
            }
        }
    }
    return rect;
}
