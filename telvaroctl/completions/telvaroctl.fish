# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# fish completion for telvaroctl, which knows its commands and options, and asks the service for its views.

function __telvaroctl_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    set -l candidates (telvaroctl complete -- $words[2..-1] "$current" 2>/dev/null)
    switch "$candidates[1]"
        case :files
            __fish_complete_path $current
        case :directories
            __fish_complete_directories $current
        case '?*'
            printf '%s\n' $candidates
    end
end

complete -c telvaroctl -f -a '(__telvaroctl_complete)'
