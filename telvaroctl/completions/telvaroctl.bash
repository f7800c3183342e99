# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# bash completion for telvaroctl, which knows its commands and options, and asks the service for its views.

_telvaroctl()
{
    local IFS=$'\n' line=${COMP_LINE:0:COMP_POINT} word rest words=()
    # Bash splits words at "=" and ":", too; these belong together unless there is a blank between them.
    for word in "${COMP_WORDS[@]:0:COMP_CWORD+1}"; do
        rest=${line#"${line%%[![:blank:]]*}"}
        if [ ${#words[@]} -eq 0 ] || [ "$rest" != "$line" ]; then
            words+=("$word")
        else
            words[${#words[@]}-1]+=$word
        fi
        line=${rest#"$word"}
    done
    word=${words[${#words[@]}-1]}
    mapfile -t COMPREPLY < <(telvaroctl complete -- "${words[@]:1}" 2> /dev/null | cut -f 1)
    case ${COMPREPLY[0]-} in
        :files)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}")
            ;;
        :directories)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "${COMP_WORDS[COMP_CWORD]}")
            ;;
        *)
            # Bash replaces only what follows the last of them.
            COMPREPLY=("${COMPREPLY[@]#"${word%"${word##*[=:]}"}"}")
            ;;
    esac
}

complete -F _telvaroctl telvaroctl
