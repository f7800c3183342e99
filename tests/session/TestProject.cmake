# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# Installs everything into a folder of its own, and runs the tests of a project that is built against it.
file(REMOVE_RECURSE "${WORK_DIRECTORY}")
set(prefix "${WORK_DIRECTORY}/prefix")
set(build "${WORK_DIRECTORY}/build")
set(ENV{LD_LIBRARY_PATH} "${prefix}/${LIBRARY_FOLDER}")

function(run expectation)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    list(JOIN ARGN " " command)
    if(expectation STREQUAL "success" AND NOT result EQUAL 0)
        message(FATAL_ERROR "${command}\n${output}")
    endif()
    if(expectation STREQUAL "failure" AND result EQUAL 0)
        message(FATAL_ERROR "${command} succeeds\n${output}")
    endif()
    string(REGEX REPLACE "[ \n]+" " " output "${output}")
    set(output "${output}" PARENT_SCOPE)
endfunction()

foreach(component IN ITEMS Runtime Development Tools)
    run(success "${CMAKE_COMMAND}" --install "${BUILD_DIRECTORY}" --prefix "${prefix}" --component ${component})
endforeach()
set(configure "${CMAKE_COMMAND}" -G Ninja -S "${CMAKE_CURRENT_LIST_DIR}/project" -B "${build}"
    "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_PREFIX_PATH=${prefix}")
run(success ${configure})
file(STRINGS "${build}/CMakeCache.txt" session REGEX "^TELVARO_SESSION:")
if(NOT session MATCHES "=${prefix}/bin/telvaro-session$")
    message(FATAL_ERROR "not the session of the installation: ${session}")
endif()
run(success "${CMAKE_COMMAND}" --build "${build}")

run(success "${CMAKE_CTEST_COMMAND}" --test-dir "${build}" -j4 --output-on-failure -R "^passes")
if(NOT output MATCHES "100% tests passed, 0 tests failed out of 5 ")
    message(FATAL_ERROR "${output}")
endif()
run(failure "${CMAKE_CTEST_COMMAND}" --test-dir "${build}" -j4 -R "^fails")
if(NOT output MATCHES " 0% tests passed, 5 tests failed out of 5 " OR NOT output MATCHES "\\(Timeout\\)")
    message(FATAL_ERROR "${output}")
endif()

run(success ${configure} "-DSESSION_OF_THE_BUILD=${BUILD_DIRECTORY}/bin/telvaro-session")
run(success "${CMAKE_CTEST_COMMAND}" --test-dir "${build}" -V -R "^passes-with-a-program")
if(NOT output MATCHES "Test command: ${BUILD_DIRECTORY}/bin/telvaro-session ")
    message(FATAL_ERROR "not the session of the build: ${output}")
endif()

foreach(case IN ITEMS "NAME a|COMMAND is missing" "COMMAND true|NAME is missing"
        "SCRIPTS NAME a COMMAND true|unexpected arguments: SCRIPTS")
    string(REGEX REPLACE "\\|.*" "" arguments "${case}")
    string(REGEX REPLACE ".*\\|" "" expected "${case}")
    run(failure ${configure} "-DWRONG_ARGUMENTS=${arguments}")
    if(NOT output MATCHES "telvaro_add_test: ${expected}")
        message(FATAL_ERROR "\"${arguments}\": ${output}")
    endif()
endforeach()
