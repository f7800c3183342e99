# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
SUMMARY = "Client libraries for the compositor service of the device"
LICENSE = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=fbede04f481a3dc7f46f5f49f97fbe1f"

# TELVARO_SOURCE is the source tree; see README.md.
inherit externalsrc cmake_qt5 pkgconfig
EXTERNALSRC = "${TELVARO_SOURCE}"

DEPENDS = "qtbase"

EXTRA_OECMAKE = " \
    -DBUILD_TESTING=OFF \
    -DTELVARO_BUILD_COMPOSITOR=OFF \
    -DTELVARO_BUILD_QML=OFF \
"

# The live layer, and telvaroctl with its completions, are separate packages that an image can leave out.
PACKAGES =+ "${PN}-live ${PN}-tools"
FILES:${PN}-live = "${libdir}/libTelvaroLive.so.*"
FILES:${PN}-tools = " \
    ${bindir}/telvaroctl \
    ${datadir}/bash-completion \
    ${datadir}/fish \
    ${datadir}/zsh \
"
FILES:${PN}-dev += "${datadir}/dbus-1/interfaces"

# procps brings pidof, which processNameToPid() runs.
RDEPENDS:${PN} = "procps"
