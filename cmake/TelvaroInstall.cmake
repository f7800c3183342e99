# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

set(TELVARO_CMAKE_PACKAGE_DIRECTORY "${CMAKE_INSTALL_LIBDIR}/cmake/Telvaro")

# telvaro_install_library(TARGET HEADER...): installs a shared library with its public headers, its targets for the CMake
# package "Telvaro", and its pkg-config file, <target>.pc.
function(telvaro_install_library target)
    install(TARGETS ${target}
        EXPORT ${target}Targets
        LIBRARY
            DESTINATION "${CMAKE_INSTALL_LIBDIR}"
            COMPONENT Runtime
            NAMELINK_COMPONENT Development)
    install(FILES ${ARGN}
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/Telvaro"
        COMPONENT Development)
    install(EXPORT ${target}Targets
        NAMESPACE Telvaro::
        DESTINATION "${TELVARO_CMAKE_PACKAGE_DIRECTORY}"
        COMPONENT Development)

    set(pkgconfig_directory "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
    # The prefix in the pkg-config file is relative to the file, so that the installation can be moved, unless the library
    # directory is absolute.
    if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
        set(pkgconfig_prefix "${CMAKE_INSTALL_PREFIX}")
    else()
        file(RELATIVE_PATH pkgconfig_prefix
            "${CMAKE_INSTALL_PREFIX}/${pkgconfig_directory}" "${CMAKE_INSTALL_PREFIX}")
        string(REGEX REPLACE "/$" "" pkgconfig_prefix "\${pcfiledir}/${pkgconfig_prefix}")
    endif()
    foreach(kind IN ITEMS LIB INCLUDE)
        if(IS_ABSOLUTE "${CMAKE_INSTALL_${kind}DIR}")
            set(pkgconfig_${kind}DIR "${CMAKE_INSTALL_${kind}DIR}")
        else()
            set(pkgconfig_${kind}DIR "\${prefix}/${CMAKE_INSTALL_${kind}DIR}")
        endif()
    endforeach()
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${target}.pc.in" "${PROJECT_BINARY_DIR}/${target}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${target}.pc"
        DESTINATION "${pkgconfig_directory}"
        COMPONENT Development)
endfunction()
