# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# Functions and package lists shared by the scripts. Sourced by bash.

project_directory=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
log_directory=$project_directory/build/logs

# Needed to build the library, the tools and the examples, and to run a session.
build_packages=(
    cmake g++ make ninja-build pkg-config
    qtbase5-dev qtdeclarative5-dev libqt5waylandcompositor5-dev qtwayland5-dev-tools
    qtbase5-private-dev qtwayland5-private-dev libdbus-1-dev libwayland-dev libxcb1-dev libxkbcommon-dev
    wayland-protocols
)
session_packages=(
    dbus-daemon fonts-dejavu-core procps qtwayland5 sysvinit-utils weston
)

# Needed to build the manual and the reference.
documentation_packages=(doxygen doxygen-awesome-css mandoc python3-pygments)

# Needed in addition to build and run the tests and the benchmarks.
test_build_packages=(
    libglib2.0-dev libsdbus-c++-dev libsystemd-dev python3 valgrind
)
test_packages=(
    "${documentation_packages[@]}"
    binutils bsdextrautils clang-format desktop-file-utils dpkg-dev fish grim libglib2.0-bin libnotify-bin meson
    python3-dbus python3-jsonschema
    qml-module-qtquick-window2 qml-module-qtquick2 qml-module-qttest qt6-base-dev reuse systemd xdotool xvfb
    zsh
)

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

# run_logged NAME COMMAND...: runs the command with its output in build/logs/NAME.log and, if it fails, prints the end
# of the log.
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

# ensure_packages NAME...: installs the missing ones; prints nothing if none is missing.
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

# build_preset NAME [TARGET...]: configures a preset in build/NAME and builds it, or only these targets; prints nothing
# if it is up to date.
build_preset() {
    local preset=$1 directory=$project_directory/build/$1
    shift
    cd "$project_directory"
    if [ ! -f "$directory/build.ninja" ] || [ CMakePresets.json -nt "$directory/build.ninja" ]; then
        run_logged "configure-$preset" cmake --preset "$preset"
    fi
    if ! ninja -C "$directory" -n "$@" | grep -q 'no work to do'; then
        echo "Building in build/$preset"
        run_logged "build-$preset" ninja -C "$directory" "$@"
    fi
    put_manifest "$directory"
}

# put_manifest DIRECTORY: copies the development manifest to where a build in that directory looks for it.
put_manifest() {
    local manifest=$project_directory/compositor/data/device-manifest.json
    cmp -s "$manifest" "$1/device-manifest.json" || cp "$manifest" "$1/device-manifest.json"
}
