// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "CompositorFixture.h"
#include "WireClient.h"

#include <functional>
#include <memory>

/// A test with clients that break a protocol, one per row with the columns `attack` and `error`.
class HostileClientFixture : public CompositorFixture
{
    Q_OBJECT

public:
    using Attack = std::function<void(WireClient&)>;

protected:
    /// The expected error of a client that stays connected.
    static constexpr int cNoError = -1;
    /// The compositor may disconnect the client or not.
    static constexpr int cAnyEnd = -2;
    /// The compositor disconnects the client with any error.
    static constexpr int cAnyError = -3;

    /// Runs the row's attack from the client, then `afterAttack`, checks how the connection ends, and that the window
    /// of another client survives and still draws. The last statement of a test function.
    void attackFrom(WireClient& client, const std::function<void()>& afterAttack = {});
};

Q_DECLARE_METATYPE(HostileClientFixture::Attack)
