// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

/// A connector whose proxy is in reach.
template <typename Connector> class WithProxy : public Connector
{
public:
    using Connector::Connector;
    using Connector::mInterface;
};
