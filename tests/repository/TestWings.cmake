# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
cmake_minimum_required(VERSION 3.16)

# Each wing of the compositor includes only itself and the wings before it.
foreach(wing IN ITEMS state wayland shell bus script)
    list(APPEND allowed ${wing})
    file(GLOB sources "${SOURCE_DIRECTORY}/compositor/${wing}/*.h" "${SOURCE_DIRECTORY}/compositor/${wing}/*.cpp")
    if(NOT sources)
        message(SEND_ERROR "compositor/${wing} has no sources")
    endif()
    foreach(source IN LISTS sources)
        file(STRINGS "${source}" lines REGEX "^#include \"[^\"]*/")
        foreach(line IN LISTS lines)
            string(REGEX REPLACE "^#include \"([^/]*)/.*$" "\\1" included "${line}")
            if(NOT included IN_LIST allowed)
                message(SEND_ERROR "${source}: ${line} points upwards")
            endif()
        endforeach()
    endforeach()
endforeach()
