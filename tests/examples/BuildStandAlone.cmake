# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# cmake -DSOURCE=example -DBUILD=directory -DPREFIX=directory -DGENERATOR=name -DCXX_FLAGS=flags -P BuildStandAlone.cmake
# Builds an example from nothing, as a project of its own, against the library that is installed in the prefix.
file(REMOVE_RECURSE "${BUILD}")
foreach(step IN ITEMS configure build)
    if(step STREQUAL configure)
        set(command "${CMAKE_COMMAND}" -S "${SOURCE}" -B "${BUILD}" -G "${GENERATOR}"
            "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
    else()
        set(command "${CMAKE_COMMAND}" --build "${BUILD}")
    endif()
    execute_process(COMMAND ${command} RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "the step ${step} of ${SOURCE} failed: ${status}")
    endif()
endforeach()

# find_package() must have found the installed package.
file(STRINGS "${BUILD}/CMakeCache.txt" package REGEX "^Telvaro_DIR:")
if(package AND NOT package MATCHES "=${PREFIX}/")
    message(FATAL_ERROR "another library was found: ${package}")
endif()
