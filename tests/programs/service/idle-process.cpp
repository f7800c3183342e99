// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <iostream>
#include <string>

// Runs under whatever name it was copied to until its standard input ends.
int main()
{
    std::cout << "running" << std::endl;
    std::string line;
    while (std::getline(std::cin, line)) { }
    return 0;
}
