// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TouchFixture.h"

#include "ListeningPort.h"

void TouchFixture::startWithFingers(const QStringList& options)
{
    mCompositor->environment().insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("tuiotouch:udp=0"));
    mCompositor->environment().insert(QStringLiteral("QT_TUIOTOUCH_DELIVER_WITHOUT_FOCUS"), QStringLiteral("1"));
    mCompositor->start(options);
    mFingers = std::make_unique<TuioSender>(listeningPort(mCompositor->processId(), QStringLiteral("udp")));
}

void TouchFixture::put(const QMap<int, QPointF>& fingers)
{
    QMap<int, QPointF> normalized;
    for (auto finger = fingers.cbegin(); finger != fingers.cend(); ++finger) {
        normalized.insert(finger.key(), {finger->x() / cOutput.width(), finger->y() / cOutput.height()});
    }
    mFingers->send(normalized);
}

void TouchFixture::tap(const QPointF& position)
{
    put({{++mTaps, position}});
    put({});
}

WireClient::Window TouchFixture::openWindow(WireClient& client, const QByteArray& title)
{
    const WireClient::Window window = client.createWindow();
    client.configure(window.surface, window.xdgSurface);
    client.attach(window.surface, client.createBuffer(cOutput - QSize(0, cStatusBar)));
    client.damage(window.surface, QRect(QPoint(), cOutput));
    client.send(WireMessage(window.toplevel, 2).text(title));
    client.commit(window.surface);
    client.synchronise();
    screenShot();
    return window;
}
