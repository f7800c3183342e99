# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# The virtual device: its root, kernel and disk. To be sourced by bash, after common.sh, debian.sh, packages.sh
# and armv7.sh.

export PYTHONDONTWRITEBYTECODE=1
device_directory=$project_directory/build/device
device_packages=(cpio e2fsprogs g++-arm-linux-gnueabihf kmod mmdebstrap python3 qemu-system-arm qemu-user-static)

# What the device has beside the packages made here and what they depend on.
device_root_packages=(
    adwaita-icon-theme dbus dbus-user-session fonts-dejavu-core libpam-systemd libqt5waylandcompositor5 libqt5widgets5
    procps qml-module-qtquick-window2 qml-module-qtquick2 qtwayland5 systemd-sysv sysvinit-utils udev
)
# In the order in which they are loaded, with what they depend on.
device_modules=(
    virtio_mmio virtio_blk ext4 virtio_gpu virtio_input evdev virtio_console virtio_net virtio_rng uinput
)

# A Debian for the device without a kernel, and the packages of the kernel and of the first program that it runs. Made
# once: programs of the device's architecture are emulated for it.
ensure_device_root() {
    local root=$device_directory/root
    [ "$(cat "$root/srv/packages" 2> /dev/null)" != "${device_root_packages[*]}" ] || return 0
    echo "Making build/device/root, once, which takes some minutes"
    as_root rm -rf "$root" "$root.new" "$device_directory/archive"
    mkdir -p "$device_directory/archive"
    run_logged device-root for_architecture armhf mmdebstrap --mode=root --skip=check/qemu,cleanup/apt/lists \
        --architectures=armhf --variant=apt --dpkgopt=force-unsafe-io --dpkgopt='path-exclude=/usr/share/man/*' \
        --dpkgopt='path-exclude=/usr/share/doc/*' --dpkgopt='path-exclude=/usr/share/locale/*' \
        --include="$(IFS=,; echo "${device_root_packages[*]}")" \
        --customize-hook="$project_directory/scripts/lib/download-kernel $device_directory/archive" \
        "$(debian_release)" "$root.new" "$(debian_archive)"
    as_root tee "$root.new/srv/packages" <<< "${device_root_packages[*]}" > /dev/null
    as_root mv "$root.new" "$root"
}

# The kernel, and a file system in memory with the drivers for the disk and the other devices, whose first process is
# device/init.
ensure_device_kernel() {
    local kernel=$device_directory/kernel work
    [ ! "$kernel/initrd.img" -nt "$project_directory/device/init" ] || return 0
    echo "Making build/device/kernel"
    work=$(mktemp -d)
    dpkg-deb -x "$device_directory"/archive/linux-image-*.deb "$work/linux"
    dpkg-deb -x "$device_directory"/archive/busybox-static_*.deb "$work/busybox"
    rm -rf "$kernel"
    mkdir -p "$kernel" "$work/initrd"/{bin,dev,disk,proc}
    cp "$work"/linux/boot/vmlinuz-* "$kernel/vmlinuz"
    cp "$work/busybox/bin/busybox" "$work/initrd/bin"
    install -m 755 "$project_directory/device/init" "$work/initrd/init"

    local version=("$work"/linux/lib/modules/*) module file
    depmod --basedir "$work/linux" "${version##*/}"
    for module in "${device_modules[@]}"; do
        modprobe --dirname "$work/linux" --set-version "${version##*/}" --show-depends "$module" \
            | sed -n 's/^insmod \([^ ]*\) *$/\1/p'
    done | awk '!seen[$0]++' > "$work/modules"
    while read -r file; do
        install -m 644 -D "$file" "$work/initrd/modules.d/${file##*/}"
        echo "/modules.d/${file##*/}" >> "$work/initrd/modules"
    done < "$work/modules"
    (cd "$work/initrd" && find . | cpio --quiet --create --format=newc --owner=0:0 | gzip -1) > "$kernel/initrd.img"
    rm -r "$work"
}

# make_device_disk: the root with the packages of scripts/package and the files of device/root.
make_device_disk() {
    local disk=$device_directory/disk.img root=$device_directory/root.installed package
    if [ -f "$disk" ] && [ -z "$(find "$package_directory/armhf" "$device_directory/root/srv/packages" \
        "$project_directory"/{device/{root,touch-panel.cpp},scripts/lib/device.sh} -newer "$disk" -print -quit)" ]; then
        return 0
    fi
    echo "Making build/device/disk.img"
    as_root rm -rf "$root"
    as_root cp -a "$device_directory/root" "$root"
    arm-linux-gnueabihf-g++ -std=c++17 -O2 -static -o "$device_directory/touch-panel" \
        "$project_directory/device/touch-panel.cpp"
    as_root install -D "$device_directory/touch-panel" "$root/usr/libexec/virtual-device/touch-panel"
    as_root cp -rT "$project_directory/device/root" "$root"
    as_root mkdir "$root/srv/telvaro"
    for package in "$package_directory"/armhf/*.deb; do
        [[ $package == *-dbgsym_* || $package == */libtelvaro-dev_* ]] || as_root cp "$package" "$root/srv/telvaro"
    done
    run_logged device-disk in_root armhf "$root" sh -ec '
        dpkg -i /srv/telvaro/*.deb
        rm -r /srv/telvaro
        echo 0123456789abcdef0123456789abcdef > /etc/machine-id
        echo device > /etc/hostname
        passwd -d root
        useradd --uid 1000 --create-home --shell /bin/bash --groups video,input,tty device
        mkdir -p /var/lib/systemd/linger
        touch /var/lib/systemd/linger/device
        systemctl enable virtual-device-agent touch-panel
        systemctl --global enable telvaro-compositor
        systemctl mask apt-daily.timer apt-daily-upgrade.timer dpkg-db-backup.timer e2scrub_all.timer fstrim.timer \
            getty@tty1.service
        # Each of them costs a second of the boot. The modules are in the initrd.
        systemctl mask modprobe@configfs modprobe@dm_mod modprobe@drm modprobe@efi_pstore modprobe@fuse modprobe@loop \
            dev-mqueue.mount proc-sys-fs-binfmt_misc.automount sys-fs-fuse-connections.mount sys-kernel-config.mount \
            sys-kernel-debug.mount sys-kernel-tracing.mount systemd-pstore.service
    '
    rm -f "$disk.new"
    truncate --size 600M "$disk.new"
    run_logged device-mke2fs as_root mke2fs -q -t ext4 -d "$root" -O '^has_journal,^metadata_csum' "$disk.new"
    as_root rm -rf "$root"
    mv "$disk.new" "$disk"
}

# make_device_sysroot: the headers and libraries of the device, for applications that are cross compiled.
make_device_sysroot() {
    local sysroot=$device_directory/sysroot package
    ensure_armv7_sysroot
    rm -rf "$sysroot"
    cp -a "$armv7_sysroot" "$sysroot"
    for package in "$package_directory"/armhf/libtelvaro*.deb; do
        [[ $package == *-dbgsym_* ]] || dpkg-deb -x "$package" "$sysroot"
    done
    echo "$sysroot"
}

# ensure_device: all that scripts/device boots, made of what is there and newer.
ensure_device() {
    ensure_packages "${device_packages[@]}"
    ensure_armhf_packages
    ensure_device_root
    ensure_device_kernel
    make_device_disk
}
