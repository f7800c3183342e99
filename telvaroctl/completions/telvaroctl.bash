# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# bash completion for telvaroctl, which knows its commands and options, and asks the service for its views.

_telvaroctl()
{
    local IFS=$'\n'
    mapfile -t COMPREPLY < <(telvaroctl complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2> /dev/null | cut -f 1)
    case ${COMPREPLY[0]-} in
        :files)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}")
            ;;
        :directories)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "${COMP_WORDS[COMP_CWORD]}")
            ;;
    esac
}

complete -F _telvaroctl telvaroctl
