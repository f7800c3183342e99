// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <iostream>
#include <string>

// Runs until standard input ends; tests copy it to the process names that they need.
int main()
{
    std::cout << "running" << std::endl;
    std::string line;
    while (std::getline(std::cin, line)) { }
    return 0;
}
