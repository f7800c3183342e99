# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# Makes this machine the compositor device for a library that looks for its manifest in the build folder; a manifest
# anywhere else belongs to the machine and is only checked.
string(FIND "${MANIFEST}" "${BUILD_DIRECTORY}/" position)
if(position EQUAL 0)
    configure_file("${COMPOSITOR_DEVICE}" "${MANIFEST}" COPYONLY)
    return()
endif()

function(read_product_code variable file)
    set(manifest "")
    if(EXISTS "${file}")
        file(READ "${file}" manifest)
    endif()
    string(REGEX MATCH [["productCode"[ \t\r\n]*:[ \t\r\n]*"([0-9]*)"]] ignored "${manifest}")
    set(${variable} "${CMAKE_MATCH_1}" PARENT_SCOPE)
endfunction()
read_product_code(expected "${COMPOSITOR_DEVICE}")
read_product_code(product_code "${MANIFEST}")
if(NOT product_code STREQUAL expected)
    message(FATAL_ERROR
        "The library was built with TELVARO_MANIFEST_PATH=${MANIFEST}, and that file does not hold the product code "
        "of ${COMPOSITOR_DEVICE}. Copy it, or configure with a path inside ${BUILD_DIRECTORY}.")
endif()
