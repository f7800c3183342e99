# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# In a build of Telvaro, telvaro-session is a target instead. TELVARO_TOOLS_DIRECTORY is that of the installation.
find_program(TELVARO_SESSION telvaro-session HINTS "${TELVARO_TOOLS_DIRECTORY}")
mark_as_advanced(TELVARO_SESSION)

# telvaro_add_test(NAME <name> [SCRIPT <file>] [SIZE <width>x<height>] [TIMEOUT <seconds>]
#                  COMMAND <command> [<argument>...])
#
# Adds a test that runs the command, a program or an executable target, in a session of its own without a display. It
# passes if the command exits with 0, or if the script ends the session with 0. Any number of these tests can run in
# parallel. The script is relative to the current source directory; the timeout is 60 seconds unless one is given.
function(telvaro_add_test)
    cmake_parse_arguments(PARSE_ARGV 0 test "" "NAME;SCRIPT;SIZE;TIMEOUT" "COMMAND")
    if(test_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "telvaro_add_test: unexpected arguments: ${test_UNPARSED_ARGUMENTS}")
    endif()
    foreach(key IN ITEMS NAME COMMAND)
        if(NOT DEFINED test_${key})
            message(FATAL_ERROR "telvaro_add_test: ${key} is missing")
        endif()
    endforeach()

    if(TARGET telvaro-session)
        set(session "$<TARGET_FILE:telvaro-session>")
    elseif(TELVARO_SESSION)
        set(session "${TELVARO_SESSION}")
    else()
        message(FATAL_ERROR "telvaro_add_test: telvaro-session is not installed (Debian: telvaro-compositor); "
            "TELVARO_SESSION can name it")
    endif()
    set(options --headless)
    if(test_SIZE)
        list(APPEND options --size "${test_SIZE}")
    endif()
    if(test_SCRIPT)
        get_filename_component(script "${test_SCRIPT}" ABSOLUTE)
        list(APPEND options --script "${script}")
    endif()
    if(NOT test_TIMEOUT)
        set(test_TIMEOUT 60)
    endif()
    list(GET test_COMMAND 0 program)
    if(TARGET "${program}")
        list(REMOVE_AT test_COMMAND 0)
        list(INSERT test_COMMAND 0 "$<TARGET_FILE:${program}>")
    endif()
    add_test(NAME "${test_NAME}" COMMAND "${session}" ${options} -- ${test_COMMAND})
    set_tests_properties("${test_NAME}" PROPERTIES TIMEOUT "${test_TIMEOUT}")
endfunction()
