# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# fish completion for telvaroctl. Commands, options and words are read from its help, ids from the running service.

# The values of one member of all views. Values with an escape in them are left out, and none is offered if the service
# does not answer soon: a completion must not hold up the line.
function __telvaroctl_views
    timeout 0.3 telvaroctl views --json 2>/dev/null | sed -n 's/^ *"'$argv[1]'": "\{0,1\}\([^"\\\\,]\{1,\}\)"\{0,1\},\{0,1\}$/\1/p' | sort -u
end

function __telvaroctl_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    set -l command $words[2]

    set -l help
    if test (count $words) -eq 1
        set help (telvaroctl --help 2>/dev/null)
    else
        set help (telvaroctl $command --help 2>/dev/null)
    end

    if string match -q -- '-*' $current
        printf '%s\n' $help | sed -n '/^Options:/,$p' | grep -o -- ' --\{0,1\}[a-z-]*' | tr -d ' '
        return
    end
    if test (count $words) -eq 1
        printf '%s\n' $help | sed -n '/^Commands:/,/^$/s/^  \([a-z-]*\)  *\(.*\)/\1\t\2/p'
        return
    end
    switch $words[-1]
        case --app
            __telvaroctl_views appId
            return
        case --index
            __telvaroctl_views sortIndex
            return
        case --icon
            __fish_complete_path $current
            return
    end
    switch $command
        case switch
            __telvaroctl_views uuid
        case top is-current pid
            ps -A -o comm= | sort -u
        case record
            __fish_complete_path $current
        case screenshot
            __fish_complete_directories $current
        case '*'
            # The words that the usage line spells out.
            printf '%s\n' $help | sed -n 's/^Usage: telvaroctl [a-z-]* \[options\]//p' | tr -c 'a-zA-Z\n-' '\n' | grep '^[a-z]'
    end
end

complete -c telvaroctl -f -a '(__telvaroctl_complete)'
