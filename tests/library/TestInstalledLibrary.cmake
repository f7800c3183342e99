# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# Installs the library into a folder of its own and builds and runs an application against it, found by CMake's package
# and by pkg-config.
include("${CMAKE_CURRENT_LIST_DIR}/BuildConsumer.cmake")
set(prefix "${WORK_DIRECTORY}/prefix")
set(pkg_config_options "")
if(SYSROOT)
    # pkg-config takes every path for one of the sysroot's, so that is where the library goes: into a copy of its own.
    set(sysroot "${WORK_DIRECTORY}/sysroot")
    file(MAKE_DIRECTORY "${WORK_DIRECTORY}")
    run(cp -a --link "${SYSROOT}" "${sysroot}")
    set(prefix "${sysroot}/opt/telvaro")
    set(pkg_config_options "-DTELVARO_SYSROOT=${sysroot}")
endif()
set(library_directory "${prefix}/${LIBRARY_FOLDER}")

foreach(component IN ITEMS Runtime Development)
    run("${CMAKE_COMMAND}" --install "${BUILD_DIRECTORY}" --prefix "${prefix}" --component ${component})
endforeach()

file(GLOB headers RELATIVE "${SOURCE_DIRECTORY}/include" "${SOURCE_DIRECTORY}/include/*.h")
file(GLOB installed_headers RELATIVE "${prefix}/include/Telvaro" "${prefix}/include/Telvaro/*")
if(NOT headers STREQUAL installed_headers)
    message(FATAL_ERROR "Installed headers: ${installed_headers}")
endif()
foreach(name IN ITEMS libTelvaro.so libTelvaro.so.1 libTelvaro.so.1.0.0 pkgconfig/Telvaro.pc
        cmake/Telvaro/TelvaroConfig.cmake cmake/Telvaro/TelvaroConfigVersion.cmake)
    if(NOT EXISTS "${library_directory}/${name}")
        message(FATAL_ERROR "${name} is not installed")
    endif()
endforeach()
file(GLOB interfaces RELATIVE "${SOURCE_DIRECTORY}/dbus" "${SOURCE_DIRECTORY}/dbus/*.xml")
file(GLOB installed_interfaces RELATIVE "${prefix}/share/dbus-1/interfaces" "${prefix}/share/dbus-1/interfaces/*")
if(NOT interfaces STREQUAL installed_interfaces)
    message(FATAL_ERROR "Installed interface files: ${installed_interfaces}")
endif()
foreach(name IN ITEMS pkgconfig/Telvaro.pc cmake/Telvaro/TelvaroConfig.cmake cmake/Telvaro/TelvaroTargets.cmake)
    file(READ "${library_directory}/${name}" content)
    foreach(place IN ITEMS "${SOURCE_DIRECTORY}" "${BUILD_DIRECTORY}")
        string(REPLACE "${WORK_DIRECTORY}" "" content "${content}")
        string(FIND "${content}" "${place}/" position)
        if(NOT position EQUAL -1)
            message(FATAL_ERROR "${name} names ${place}")
        endif()
    endforeach()
endforeach()

set(ENV{LD_LIBRARY_PATH} "${library_directory}")
build_and_run(find_package "${SERVICE_NAME}" "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_FIND_ROOT_PATH=${prefix}")
set(ENV{PKG_CONFIG_PATH} "${library_directory}/pkgconfig")
build_and_run(pkg-config "${SERVICE_NAME}" ${pkg_config_options})
