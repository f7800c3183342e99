# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# Release and package archive of the Debian on this machine. Sourced by bash.

debian_release() {
    . /etc/os-release
    echo "$VERSION_CODENAME"
}

# Prints the URI of the archive that this machine installs its packages from.
debian_archive() {
    apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' "Codename: $(debian_release)" | head -n 1
}
