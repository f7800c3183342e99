// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/Scene.h"
#include "shell/Background.h"
#include "shell/NotificationCards.h"
#include "shell/OutputWindow.h"
#include "shell/OverlayPanel.h"
#include "shell/SceneLayer.h"
#include "shell/StatusBar.h"
#include "shell/WindowStack.h"
#include "state/NotificationCenter.h"
#include "state/Output.h"
#include "state/ScreenSaver.h"
#include "state/ViewList.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <functional>

namespace {

/// The scene as the compositor puts it together, in a window, without clients.
struct Desk
{
    Desk()
    {
        const std::initializer_list<SceneLayer*> layers = {&background, &windows, &statusBar, &cards, &overlay};
        for (SceneLayer* layer : layers) {
            scene.addLayer(layer);
        }
    }

    Output output{QSize(400, 300)};
    ScreenSaver screenSaver{0};
    ViewList views;
    NotificationCenter notifications;
    Scene scene{output, screenSaver};
    Background background{output, views};
    WindowStack windows{output, views, scene};
    StatusBar statusBar{output, views, scene};
    NotificationCards cards{output, notifications, scene};
    OverlayPanel overlay{output, scene};
    OutputWindow window{output, scene};
};

using Change = std::function<void(Desk&)>;

/// Fills a rectangle, and counts how often.
class Sheet : public SceneLayer
{
public:
    Sheet(const QRect& rect, const QColor& color)
        : mRect(rect)
        , mColor(color)
    {
    }

    QRegion update() override
    {
        return {};
    }
    void paint(QPainter* painter) const override
    {
        ++mCount;
        painter->fillRect(mRect, mColor);
    }
    QRegion opaqueRegion() const override
    {
        return mColor.alpha() == 255 ? mRect : QRect();
    }
    int count() const
    {
        return mCount;
    }

private:
    const QRect mRect;
    const QColor mColor;
    mutable int mCount = 0;
};

View view()
{
    View result;
    result.uuid = QStringLiteral("one");
    result.title = QStringLiteral("Notes");
    return result;
}

} // namespace

Q_DECLARE_METATYPE(Change)

class SceneTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneChangePaintsOneFrame_data();
    void oneChangePaintsOneFrame();
    void layersThatNobodySeesAreNotPainted_data();
    void layersThatNobodySeesAreNotPainted();
};

void SceneTest::oneChangePaintsOneFrame_data()
{
    QTest::addColumn<Change>("change");
    QTest::newRow("nothing but a frame") << Change([](Desk& desk) {
        desk.scene.requestFrame();
    });
    QTest::newRow("notification") << Change([](Desk& desk) {
        Notification notification;
        notification.summary = QStringLiteral("Hello");
        desk.notifications.notify(notification, 0);
    });
    QTest::newRow("overlay") << Change([](Desk& desk) {
        desk.overlay.show(QStringLiteral("Hello"));
    });
    QTest::newRow("view") << Change([](Desk& desk) {
        desk.views.add(view());
    });
    QTest::newRow("orientation") << Change([](Desk& desk) {
        desk.output.setOrientation(QStringLiteral("180"));
    });
}

void SceneTest::oneChangePaintsOneFrame()
{
    QFETCH(Change, change);
    constexpr int cSeveralFrames = 100;
    Desk desk;
    QSignalSpy frames(&desk.window, &OutputWindow::framePainted);
    desk.window.show();
    QVERIFY(frames.wait());
    while (frames.wait(cSeveralFrames)) { }

    frames.clear();
    change(desk);
    QVERIFY(frames.wait());
    QVERIFY(!frames.wait(cSeveralFrames));
    QCOMPARE(frames.count(), 1);
}

void SceneTest::layersThatNobodySeesAreNotPainted_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QColor>("color");
    QTest::addColumn<int>("paintedBelow");
    const QRect all(0, 0, 400, 300);
    QTest::newRow("covered") << all << QColor(Qt::blue) << 0;
    QTest::newRow("seen through") << all << QColor(0, 0, 255, 128) << 1;
    QTest::newRow("seen at an edge") << all.adjusted(0, 0, 0, -1) << QColor(Qt::blue) << 1;
}

void SceneTest::layersThatNobodySeesAreNotPainted()
{
    QFETCH(QRect, rect);
    QFETCH(QColor, color);
    QFETCH(int, paintedBelow);
    Output output{QSize(400, 300)};
    ScreenSaver screenSaver{0};
    Scene scene{output, screenSaver};
    Sheet below(output.rect(), Qt::red);
    Sheet above(rect, color);
    scene.addLayer(&below);
    scene.addLayer(&above);
    const QImage image = scene.toImage();
    QCOMPARE(below.count(), paintedBelow);
    QCOMPARE(above.count(), 1);
    QCOMPARE(image.pixelColor(0, 299), rect.height() < 300 ? QColor(Qt::red) : image.pixelColor(0, 0));
}

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    SceneTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "SceneTest.moc"
