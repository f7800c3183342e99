// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "HostileClientFixture.h"

#include "CompositorBus.h"

void HostileClientFixture::attackFrom(WireClient& client, const std::function<void()>& afterAttack)
{
    QFETCH(Attack, attack);
    QFETCH(int, error);
    expectComplaints(200);
    const auto witness = protocolClient();
    witness->send("open a Witness");
    TRY_COMPARE(CompositorBus::views().size(), 1);

    attack(client);
    client.synchronise();
    if (afterAttack) {
        afterAttack();
    }
    // Paints and arranges everything again.
    screenShot();
    const bool isConnected = client.synchronise();
    if (error == cNoError) {
        QVERIFY2(isConnected, client.errorText());
    } else if (error != cAnyEnd) {
        QVERIFY(!isConnected);
        QVERIFY2(error == cAnyError || client.errorCode() == error,
                 QByteArray::number(client.errorCode()) + ": " + client.errorText());
    }
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("fullScreen"), true);
    screenShot();
    client.disconnect();
    TRY_COMPARE(CompositorBus::views().size(), 1);
    QCOMPARE(CompositorBus::views().first().info1, QStringLiteral("Witness"));
    witness->send("frame 1");
    witness->waitFor("frame 1");
    screenShot();
}
