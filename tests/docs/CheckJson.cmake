# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
cmake_minimum_required(VERSION 3.19)

file(READ "${FILE}" content)
string(JSON type TYPE "${content}")
