# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# Configures the library for directories that are given as absolute paths, and asks pkg-config for them.
file(REMOVE_RECURSE "${WORK_DIRECTORY}")
set(toolchain "")
if(TOOLCHAIN_FILE)
    set(toolchain "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN_FILE}")
endif()
execute_process(
    COMMAND "${CMAKE_COMMAND}" -G Ninja -S "${SOURCE_DIRECTORY}" -B "${WORK_DIRECTORY}"
        -DBUILD_TESTING=OFF -DTELVARO_BUILD_TOOLS=OFF "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" ${toolchain}
        -DCMAKE_INSTALL_PREFIX=/opt/prefix -DCMAKE_INSTALL_LIBDIR=/opt/libraries -DCMAKE_INSTALL_INCLUDEDIR=/opt/headers
    OUTPUT_VARIABLE output ERROR_VARIABLE output
    RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${output}")
endif()
set(ENV{PKG_CONFIG_PATH} "${WORK_DIRECTORY}")
foreach(expected IN ITEMS prefix=/opt/prefix libdir=/opt/libraries includedir=/opt/headers)
    string(REGEX MATCH "[a-z]+" name "${expected}")
    execute_process(COMMAND pkg-config "--variable=${name}" Telvaro OUTPUT_VARIABLE value ERROR_VARIABLE value)
    if(NOT "${name}=${value}" STREQUAL "${expected}\n")
        message(FATAL_ERROR "pkg-config says ${name}=${value}, not ${expected}")
    endif()
endforeach()
