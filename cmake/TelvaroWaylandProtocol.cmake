# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# wayland-scanner generates C.
enable_language(C)
find_package(PkgConfig REQUIRED)
pkg_get_variable(telvaro_wayland_protocols wayland-protocols pkgdatadir)
pkg_get_variable(telvaro_wayland_scanner wayland-scanner wayland_scanner)
if(NOT telvaro_wayland_protocols OR NOT telvaro_wayland_scanner)
    message(FATAL_ERROR "wayland-protocols and wayland-scanner are needed")
endif()

# Generates the code of a Wayland protocol and links it to the target. The file is a path in the package
# wayland-protocols or an absolute one, the side is server or client, and the header is <name>-<side>-protocol.h. The
# target's property TELVARO_PROTOCOLS lists the libraries.
function(telvaro_wayland_protocol target side file)
    get_filename_component(xml "${file}" ABSOLUTE BASE_DIR "${telvaro_wayland_protocols}")
    get_filename_component(name "${file}" NAME_WE)
    set(library "${target}-${name}")
    set(directory "${CMAKE_CURRENT_BINARY_DIR}/${library}-generated")
    set(header "${directory}/${name}-${side}-protocol.h")
    set(code "${directory}/${name}-protocol.c")
    file(MAKE_DIRECTORY "${directory}")
    add_custom_command(
        OUTPUT "${header}" "${code}"
        COMMAND "${telvaro_wayland_scanner}" ${side}-header "${xml}" "${header}"
        COMMAND "${telvaro_wayland_scanner}" private-code "${xml}" "${code}"
        DEPENDS "${xml}"
        VERBATIM)
    add_library(${library} STATIC "${header}" "${code}")
    set_target_properties(${library} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_include_directories(${library} SYSTEM INTERFACE "${directory}")
    target_link_libraries(${target} PRIVATE ${library})
    add_dependencies(${target} ${library})
    set_property(TARGET ${target} APPEND PROPERTY TELVARO_PROTOCOLS ${library})
endfunction()
