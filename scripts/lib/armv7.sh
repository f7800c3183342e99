# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# The device's architecture on a Debian machine. Sourced by bash, after common.sh and debian.sh.

armv7_packages=(g++-arm-linux-gnueabihf mmdebstrap qemu-user-static qt5-qmake-bin qtbase5-dev-tools)
armv7_sysroot=$project_directory/build/armv7-sysroot

# Creates a sysroot with the headers and libraries of the device's architecture, without changing this machine.
ensure_armv7_sysroot() {
    # One that was made before all of these packages were needed is made anew.
    [ ! -e "$armv7_sysroot/usr/include/dbus-1.0/dbus/dbus.h" ] || return 0
    local new=$armv7_sysroot.new link tool
    echo "Making build/armv7-sysroot"
    rm -rf "$new"
    run_logged armv7-sysroot mmdebstrap --architectures=armhf --variant=extract \
        --include="libc6-dev,libstdc++-$(arm-linux-gnueabihf-g++ -dumpversion)-dev,libdbus-1-dev,qtbase5-dev" \
        "$(debian_release)" "$new" "$(debian_archive)"

    # Emulated programs look up every path in the sysroot first, where empty folders and programs of the other
    # architecture would hide this machine's.
    rm -rf "$new"/{bin,sbin,etc,tmp,var,dev,usr/bin,usr/sbin}
    find "$new" -type l -lname '/*' | while read -r link; do
        ln -snf --relative "$new$(readlink "$link")" "$link"
    done

    # Qt's CMake packages expect its build tools in the sysroot; link them to this machine's, which can run.
    for tool in "$new"/usr/lib/qt5/bin/*; do
        ln -sf "/usr/lib/qt5/bin/${tool##*/}" "$tool"
    done
    ln -sf /usr/lib/qt5/bin/qmake "$new/usr/lib/arm-linux-gnueabihf/qt5/bin/qmake"
    rm -rf "$armv7_sysroot"
    mv "$new" "$armv7_sysroot"
}
