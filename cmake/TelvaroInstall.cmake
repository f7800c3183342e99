# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

set(TELVARO_CMAKE_PACKAGE_DIRECTORY "${CMAKE_INSTALL_LIBDIR}/cmake/Telvaro")

# Installs a shared library of the project with its public headers: to be run with, to be built with by CMake's package
# "Telvaro", and to be built with by a pkg-config file, which is named after the target.
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
    # Relative, so that the package may be installed or moved to another prefix than the configured one; but a directory
    # that is given as an absolute path stays where it is.
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
