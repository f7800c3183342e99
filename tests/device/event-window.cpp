// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
//
// event-window APPID TITLE: an application with one window, which prints the input that reaches it, a line for each
// event with the position in the window, and paints where it is touched.
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QRasterWindow>
#include <QTouchEvent>
#include <QtMath>

#include <cstdio>

namespace {

constexpr int cMark = 21;
constexpr QPoint cFirstMark{100, 50};
constexpr QPoint cSecondMark{300, 200};

void printLine(const QString& line)
{
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
}

QString positionText(const QPointF& position)
{
    return QStringLiteral("%1,%2").arg(qFloor(position.x())).arg(qFloor(position.y()));
}

class EventWindow : public QRasterWindow
{
protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        // A picture that is turned or mirrored is another picture.
        QLinearGradient gradient(0, 0, width(), 0);
        gradient.setColorAt(0, QColor(28, 52, 92));
        gradient.setColorAt(1, QColor(232, 196, 120));
        painter.fillRect(QRect(0, 0, width(), height()), gradient);
        painter.fillRect(QRect(cFirstMark, QSize(cMark, cMark)), Qt::magenta);
        painter.fillRect(QRect(cSecondMark, QSize(cMark, cMark)), Qt::cyan);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::white, 4));
        for (const QPointF& finger : mFingers) {
            painter.drawEllipse(finger, 40, 40);
        }
    }

    void resizeEvent(QResizeEvent* /*event*/) override
    {
        printLine(QStringLiteral("size %1x%2").arg(width()).arg(height()));
    }

    void keyPressEvent(QKeyEvent* event) override
    {
        printLine(QStringLiteral("key press %1").arg(event->text()));
    }

    void keyReleaseEvent(QKeyEvent* event) override
    {
        printLine(QStringLiteral("key release %1").arg(event->text()));
    }

    void mousePressEvent(QMouseEvent* event) override
    {
        printLine(QStringLiteral("pointer press %1").arg(positionText(event->localPos())));
    }

    void mouseReleaseEvent(QMouseEvent* event) override
    {
        printLine(QStringLiteral("pointer release %1").arg(positionText(event->localPos())));
    }

    void touchEvent(QTouchEvent* event) override
    {
        event->accept();
        mFingers.clear();
        for (const QTouchEvent::TouchPoint& point : event->touchPoints()) {
            if (point.state() != Qt::TouchPointReleased) {
                mFingers.append(point.pos());
            }
            if (point.state() != Qt::TouchPointStationary) {
                printLine(QStringLiteral("touch %1 %2").arg(stateName(point.state()), positionText(point.pos())));
            }
        }
        update();
    }

private:
    static QString stateName(Qt::TouchPointState state)
    {
        switch (state) {
        case Qt::TouchPointPressed:
            return QStringLiteral("down");
        case Qt::TouchPointReleased:
            return QStringLiteral("up");
        default:
            return QStringLiteral("move");
        }
    }

    QVector<QPointF> mFingers;
};

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    if (argc != 3) {
        std::fputs("Usage: event-window APPID TITLE\n", stderr);
        return 2;
    }
    QGuiApplication::setDesktopFileName(QString::fromLocal8Bit(argv[1]));
    EventWindow window;
    // The window's edges are those of its view.
    window.setFlag(Qt::FramelessWindowHint);
    window.setTitle(QString::fromLocal8Bit(argv[2]));
    window.show();
    return QGuiApplication::exec();
}
