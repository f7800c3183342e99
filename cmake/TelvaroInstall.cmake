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

    foreach(kind IN ITEMS LIB INCLUDE)
        if(IS_ABSOLUTE "${CMAKE_INSTALL_${kind}DIR}")
            set(pkgconfig_${kind}DIR "${CMAKE_INSTALL_${kind}DIR}")
        else()
            set(pkgconfig_${kind}DIR "\${prefix}/${CMAKE_INSTALL_${kind}DIR}")
        endif()
    endforeach()
    # The prefix is known when the file is installed: cmake --install has an option for it.
    set(pkgconfig_prefix "@CMAKE_INSTALL_PREFIX@")
    set(template "${PROJECT_BINARY_DIR}/${target}.pc.in")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${target}.pc.in" "${template}" @ONLY)
    string(REPLACE "\${prefix}" "\${CMAKE_INSTALL_PREFIX}" destination "${pkgconfig_LIBDIR}/pkgconfig")
    install(CODE "
        string(MD5 place \"\${CMAKE_INSTALL_PREFIX}\")
        configure_file(\"${template}\" \"${PROJECT_BINARY_DIR}/pkgconfig/\${place}/${target}.pc\" @ONLY)
        file(INSTALL \"${PROJECT_BINARY_DIR}/pkgconfig/\${place}/${target}.pc\" DESTINATION \"${destination}\" TYPE FILE)"
        COMPONENT Development)
endfunction()
