# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# Configures the library for directories that are given as absolute paths, and asks pkg-config for them.
include("${CMAKE_CURRENT_LIST_DIR}/BuildConsumer.cmake")
run("${CMAKE_COMMAND}" -G Ninja -S "${SOURCE_DIRECTORY}" -B "${WORK_DIRECTORY}"
    -DBUILD_TESTING=OFF -DTELVARO_BUILD_TOOLS=OFF "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" ${toolchain}
    -DCMAKE_INSTALL_PREFIX=/opt/prefix -DCMAKE_INSTALL_LIBDIR=/opt/libraries -DCMAKE_INSTALL_INCLUDEDIR=/opt/headers)
# The prefix is filled in during the installation.
set(CMAKE_INSTALL_PREFIX /opt/prefix)
configure_file("${WORK_DIRECTORY}/Telvaro.pc.in" "${WORK_DIRECTORY}/Telvaro.pc" @ONLY)
set(ENV{PKG_CONFIG_PATH} "${WORK_DIRECTORY}")
foreach(expected IN ITEMS prefix=/opt/prefix libdir=/opt/libraries includedir=/opt/headers)
    string(REGEX MATCH "[a-z]+" name "${expected}")
    run(pkg-config "--variable=${name}" Telvaro)
    if(NOT "${name}=${output}" STREQUAL "${expected}\n")
        message(FATAL_ERROR "pkg-config says ${name}=${output}, not ${expected}")
    endif()
endforeach()
