// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <cstring>

int main(int argc, char* argv[])
{
    return argc == 3 && std::strcmp(argv[1], "one") == 0 && std::strcmp(argv[2], "two words") == 0 ? 0 : 1;
}
