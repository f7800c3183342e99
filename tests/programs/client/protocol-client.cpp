// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ProtocolClient.h"

#include <cstdio>
#include <exception>

int main()
{
    try {
        return ProtocolClient().run();
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "telvaro-protocol-client: %s\n", exception.what());
        return 1;
    }
}
