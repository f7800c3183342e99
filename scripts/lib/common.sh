# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# What the scripts beside this folder share. To be sourced by bash.

project_directory=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
log_directory=$project_directory/build/logs

# What the library, the tools and their tests are built with and run on.
build_packages=(
    cmake g++ ninja-build pkg-config
    qtbase5-dev qtdeclarative5-dev libqt5waylandcompositor5-dev qtwayland5-dev-tools
    qtbase5-private-dev qtwayland5-private-dev libwayland-dev wayland-protocols
)
session_packages=(
    dbus-daemon fonts-dejavu-core procps qtwayland5 sysvinit-utils weston
)

# What the tests and the benchmarks are built with, and what else they run.
test_build_packages=(
    libdbus-1-dev libglib2.0-dev libsdbus-c++-dev libsystemd-dev python3 valgrind
)
test_packages=(
    binutils bsdextrautils clang-format desktop-file-utils doxygen dpkg-dev fish libglib2.0-bin libnotify-bin mandoc
    qml-module-qtquick-window2 qml-module-qtquick2 qml-module-qttest reuse systemd xdotool xvfb zsh
)

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

# run_logged NAME COMMAND...: runs the command with its output in a log, which is shown if it fails.
run_logged() {
    local log=$log_directory/$1.log
    shift
    mkdir -p "$log_directory"
    if ! "$@" > "$log" 2>&1 < /dev/null; then
        tail -n 60 "$log" >&2
        fail "failed: $* (whole output in $log)"
    fi
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo > /dev/null; then
        sudo "$@"
    else
        fail "needs root, or sudo, for: $*"
    fi
}

# ensure_packages NAME...: installs those that are missing; says nothing where none is.
ensure_packages() {
    local package missing=()
    for package; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2> /dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "Installing ${missing[*]}"
    run_logged apt-update as_root apt-get update -qq
    run_logged apt-install as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# build_preset NAME: configures and builds a preset into build/NAME; says nothing where nothing is to be done.
build_preset() {
    local preset=$1 directory=$project_directory/build/$1
    cd "$project_directory"
    if [ ! -f "$directory/build.ninja" ] || [ CMakePresets.json -nt "$directory/build.ninja" ]; then
        run_logged "configure-$preset" cmake --preset "$preset"
    fi
    if ! ninja -C "$directory" -n | grep -q 'no work to do'; then
        echo "Building in build/$preset"
        run_logged "build-$preset" cmake --build "$directory"
    fi
    put_manifest "$directory"
}

# put_manifest DIRECTORY: the desk's manifest where a build in the directory looks for the device's.
put_manifest() {
    local manifest=$project_directory/compositor/data/device-manifest.json
    cmp -s "$manifest" "$1/device-manifest.json" || cp "$manifest" "$1/device-manifest.json"
}
