# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# bash completion for telvaroctl. Commands, options and words are read from its help, ids from the running service.

# The values of one member of all views. Values with an escape in them are left out, and none is offered if the service
# does not answer soon: a completion must not hold up the line.
_telvaroctl_views()
{
    timeout 0.3 telvaroctl views --json 2> /dev/null | sed -n 's/^ *"'"$1"'": "\{0,1\}\([^"\\,]\{1,\}\)"\{0,1\},\{0,1\}$/\1/p' | sort -u
}

_telvaroctl()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
    local help candidates IFS=$'\n'

    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        help=$(telvaroctl --help 2> /dev/null)
        candidates=$(sed -n '/^Commands:/,/^$/s/^  \([a-z-]*\) .*/\1/p' <<< "$help")
    else
        help=$(telvaroctl "$command" --help 2> /dev/null)
    fi

    if [[ $current == -* ]]; then
        candidates=$(sed -n '/^Options:/,$p' <<< "$help" | grep -o -- ' --\{0,1\}[a-z-]*' | tr -d ' ')
    elif [[ $previous == --app ]]; then
        candidates=$(_telvaroctl_views appId)
    elif [[ $previous == --index ]]; then
        candidates=$(_telvaroctl_views sortIndex)
    elif [[ $previous == --icon ]]; then
        compopt -o filenames
        candidates=$(compgen -f -- "$current")
    elif [ "$COMP_CWORD" -gt 1 ]; then
        case $command in
            switch)
                candidates=$(_telvaroctl_views uuid)
                ;;
            top | is-current | pid)
                candidates=$(ps -A -o comm= | sort -u)
                ;;
            record)
                compopt -o filenames
                candidates=$(compgen -f -- "$current")
                ;;
            screenshot)
                compopt -o filenames
                candidates=$(compgen -d -- "$current")
                ;;
            *)
                # The words that the usage line spells out.
                candidates=$(sed -n 's/^Usage: telvaroctl [a-z-]* \[options\]//p' <<< "$help" \
                    | tr -c 'a-zA-Z\n-' '\n' | grep '^[a-z]')
                ;;
        esac
    fi

    local candidate
    for candidate in $candidates; do
        [[ $candidate == "$current"* ]] && COMPREPLY+=("$candidate")
    done
}

complete -F _telvaroctl telvaroctl
