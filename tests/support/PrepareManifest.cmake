# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# Makes this machine the compositor device for a library that looks for its manifest in the build folder; a manifest
# anywhere else is the machine's own and is only looked at.
set(compositor_device [[{"productCode": "481936"}]])
string(FIND "${MANIFEST}" "${BUILD_DIRECTORY}/" position)
if(position EQUAL 0)
    file(WRITE "${MANIFEST}" "${compositor_device}\n")
    return()
endif()

set(product_code "")
if(EXISTS "${MANIFEST}")
    file(READ "${MANIFEST}" manifest)
    string(REGEX MATCH [["productCode"[ \t\r\n]*:[ \t\r\n]*"([0-9]*)"]] ignored "${manifest}")
    set(product_code "${CMAKE_MATCH_1}")
endif()
if(NOT product_code STREQUAL "481936")
    message(FATAL_ERROR
        "The library was built with TELVARO_MANIFEST_PATH=${MANIFEST}, and that file does not hold "
        "${compositor_device}. Write it, or configure with a path inside ${BUILD_DIRECTORY}.")
endif()
