# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# Debian systems in which the packages are built and tested. Sourced by bash, after common.sh and debian.sh.

package_directory=$project_directory/build/packages
# The Debian system in which the packages for armhf are built.
cross_root=$project_directory/build/cross-root

# package_sources: prints a checksum of what the packages for armhf are made of.
package_sources() {
    cd "$project_directory"
    find . -mindepth 1 -regextype posix-extended \
        -regex '\./(\..*|build|benchmarks|device|docs|scripts|tests|[^/]*\.md)' -prune -o -type f -print0 \
        | LC_ALL=C sort -z | xargs -0 sha256sum | sha256sum
}

# ensure_armhf_packages: makes the packages for armhf if there are none or the sources have changed.
ensure_armhf_packages() {
    [ "$(cat "$package_directory/armhf/sources" 2> /dev/null)" = "$(package_sources)" ] \
        || "$project_directory/scripts/package" armhf
}

# for_architecture NAME COMMAND...: runs the command as root where programs of that architecture can be executed.
for_architecture() {
    local architecture=$1
    shift
    if [ "$architecture" = "$(dpkg --print-architecture)" ]; then
        as_root "$@"
    else
        as_root "$project_directory/scripts/lib/with-arm-programs" "$@"
    fi
}

# in_root ARCHITECTURE FOLDER COMMAND...: runs the command in the system in that folder.
in_root() {
    local architecture=$1 root=$2
    shift 2
    for_architecture "$architecture" unshare --mount --fork --kill-child sh -ec '
        mount --rbind /proc "$0/proc"
        mount --rbind /dev "$0/dev"
        exec chroot "$0" "$@"
    ' "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 QEMU_CPU=cortex-a9,neon=off "$@"
}
