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

file(GLOB headers "${SOURCE_DIRECTORY}/include/*.h" "${SOURCE_DIRECTORY}/live/include/*.h")
list(TRANSFORM headers REPLACE ".*/" "")
list(SORT headers)
file(GLOB installed_headers RELATIVE "${prefix}/include/Telvaro" "${prefix}/include/Telvaro/*")
if(NOT headers STREQUAL installed_headers)
    message(FATAL_ERROR "Installed headers: ${installed_headers}")
endif()
foreach(name IN ITEMS libTelvaro.so libTelvaro.so.1 libTelvaro.so.1.0.0 pkgconfig/Telvaro.pc
        libTelvaroLive.so libTelvaroLive.so.1 libTelvaroLive.so.1.0.0 pkgconfig/TelvaroLive.pc
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
foreach(name IN ITEMS pkgconfig/Telvaro.pc pkgconfig/TelvaroLive.pc cmake/Telvaro/TelvaroConfig.cmake
        cmake/Telvaro/TelvaroTargets.cmake cmake/Telvaro/TelvaroLiveTargets.cmake)
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
foreach(variable IN ITEMS prefix=${prefix} libdir=${library_directory} bus=${BUS})
    string(REGEX MATCH "^[a-z]+" name "${variable}")
    run(pkg-config "--variable=${name}" Telvaro)
    if(NOT "${name}=${output}" STREQUAL "${variable}\n")
        message(FATAL_ERROR "pkg-config says ${name}=${output}, not ${variable}")
    endif()
endforeach()
build_and_run(pkg-config "${SERVICE_NAME}" ${pkg_config_options})

# Without a component there is the first library only, and one that does not exist is named.
function(expect_of_package arguments expected)
    set(directory "${WORK_DIRECTORY}/components")
    file(WRITE "${directory}/CMakeLists.txt"
        "cmake_minimum_required(VERSION 3.16)\nproject(Components LANGUAGES CXX)\n"
        "find_package(Telvaro ${arguments})\n"
        "message(\"on the \${Telvaro_BUS} bus\")\n"
        "foreach(target IN ITEMS Telvaro Live)\nif(TARGET Telvaro::\${target})\nmessage(\"has \${target}.\")\nendif()\n"
        "endforeach()\n")
    execute_process(
        COMMAND "${CMAKE_COMMAND}" -G Ninja -S "${directory}" -B "${directory}/build" "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
            ${toolchain} "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_FIND_ROOT_PATH=${prefix}"
        OUTPUT_QUIET
        ERROR_VARIABLE messages)
    string(REGEX REPLACE "[ \n]+" " " messages "${messages}")
    if(NOT messages MATCHES "${expected}")
        message(FATAL_ERROR "find_package(Telvaro ${arguments}) says: ${messages}")
    endif()
endfunction()
expect_of_package("REQUIRED" "^on the ${BUS} bus has Telvaro. $")
expect_of_package("REQUIRED COMPONENTS Live" "^on the ${BUS} bus has Telvaro. has Live. $")
expect_of_package("REQUIRED COMPONENTS Dead" "Telvaro has no component \"Dead\"; it has: Live")
expect_of_package("REQUIRED COMPONENTS Qml" "it has: Live. The QML module is loaded at run time by \"import Telvaro 1.0\"")
expect_of_package("OPTIONAL_COMPONENTS Dead" "^on the ${BUS} bus has Telvaro. $")
