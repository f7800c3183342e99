# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# The Debian that this machine runs. To be sourced by bash.

debian_release() {
    . /etc/os-release
    echo "$VERSION_CODENAME"
}

# The archive that this machine's own packages come from.
debian_archive() {
    apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' "Codename: $(debian_release)" | head -n 1
}
