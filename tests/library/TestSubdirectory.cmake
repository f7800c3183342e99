# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# Builds and runs an application whose project has the library's sources in a folder of its own and sets the name of the
# service as a variable.
include("${CMAKE_CURRENT_LIST_DIR}/BuildConsumer.cmake")
build_and_run(add_subdirectory com.example.Telvaro "-DTELVARO_SOURCE_DIRECTORY=${SOURCE_DIRECTORY}")
