// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Client.h"

#include <stdexcept>

void Client::construct()
{
    throw std::logic_error("this client has no handles of its own");
}

void Client::askNames()
{
    throw std::logic_error("this client has no names of its own");
}
