# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors

# Toolchain for the device's architecture, ARMv7 with hard float and without NEON, on a Debian machine. TELVARO_SYSROOT
# is the folder with the device's headers and libraries; by default the one that scripts/test-armv7 creates.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CXX_FLAGS_INIT "-march=armv7-a -mfpu=vfpv3-d16 -mfloat-abi=hard")

set(TELVARO_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../build/armv7-sysroot" CACHE PATH
    "Headers and libraries of the device")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TELVARO_SYSROOT)
get_filename_component(CMAKE_SYSROOT "${TELVARO_SYSROOT}" ABSOLUTE)

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# pkg-config does not read CMAKE_SYSROOT.
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${CMAKE_SYSROOT}")
set(ENV{PKG_CONFIG_LIBDIR}
    "${CMAKE_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig")

# A processor with no more features than the device's.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static -cpu cortex-a9,neon=off -L "${CMAKE_SYSROOT}")
