// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

/// A connector with a public proxy.
template <typename Connector> class WithProxy : public Connector
{
public:
    using Connector::Connector;
    using Connector::mInterface;
};
