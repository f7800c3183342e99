# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# Builds and runs an application that uses the library, in the folder WORK_DIRECTORY, which begins empty. The library has
# the name of the service compiled in.
file(REMOVE_RECURSE "${WORK_DIRECTORY}")

set(toolchain "")
if(TOOLCHAIN_FILE)
    set(toolchain "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN_FILE}")
endif()

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${command}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(build_and_run way service)
    set(build_directory "${WORK_DIRECTORY}/${way}")
    run("${CMAKE_COMMAND}" -G Ninja -S "${CMAKE_CURRENT_LIST_DIR}/consumer" -B "${build_directory}"
        "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" ${toolchain}
        "-DTELVARO_FROM=${way}" ${ARGN})
    run("${CMAKE_COMMAND}" --build "${build_directory}")
    run("${CMAKE_COMMAND}" -E env
        "DBUS_SESSION_BUS_ADDRESS=unix:path=${WORK_DIRECTORY}/nobody"
        "DBUS_SYSTEM_BUS_ADDRESS=unix:path=${WORK_DIRECTORY}/nobody"
        ${EMULATOR} "${build_directory}/consumer")
    if(NOT output STREQUAL "de.Telvaro.screen of ${service}\n")
        message(FATAL_ERROR "${way}: the application printed \"${output}\"")
    endif()
endfunction()
