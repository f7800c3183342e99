# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# Builds and runs an application whose project has the library's sources in a folder of its own.
include("${CMAKE_CURRENT_LIST_DIR}/BuildConsumer.cmake")
build_and_run(add_subdirectory "-DTELVARO_SOURCE_DIRECTORY=${SOURCE_DIRECTORY}")
