#!/bin/bash
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
#
# session.sh EVENT-WINDOW: uses all of telvaroctl in a session that plays session.json, and prints what it reports.
set -uo pipefail
export TELVAROCTL_TIMEOUT=60
event_window=$1
directory=$(mktemp -d)
trap 'kill $(jobs -p); rm -r "$directory"' EXIT

# until_succeeds COMMAND...: the machine that has started this script ends it if it waits for too long.
until_succeeds() {
    until "$@" > /dev/null 2>&1; do
        sleep 0.1
    done
}

show() {
    echo "> telvaroctl $*"
    telvaroctl "$@" 2>&1
    echo "= $?"
}

has_view() {
    telvaroctl views --json | grep -q "\"$1\""
}

telvaroctl watch --json > "$directory/changes" 2> "$directory/errors" &
until_succeeds grep -q watching "$directory/errors"

show status --json
show screensaver --json
# Longer than the slowest machine needs for all of this.
show screensaver timeout 7777
show screensaver off
show screensaver --json
show screensaver on
show views --json
show current --json

# Before there is a window, which would redraw itself at its own pace.
show orientation --json
for orientation in portrait 180 inverse-portrait 45 landscape; do
    show orientation $orientation
    show orientation --json
done
show fullscreen on
show fullscreen --json
show fullscreen off
show fullscreen --json

QT_QPA_PLATFORM=wayland "$event_window" org.example.events Events > "$directory/events" &
window=$!
until_succeeds has_view org.example.events
until_succeeds eval 'telvaroctl current --json | grep -q "\"width\": 1024"'
show views --json
show current --json
show pid --json event-window
show is-current event-window
show switch one
show current --json
show is-current event-window
show top event-window
show top no-such-process
show switch --app org.example.mail --index 1
show previous
show current --json
show next
show current --json
show switch no-such-view
show switch --app org.example.mail --index 7

show notify --icon dialog-information --action yes=Yes "A message" "Its text"
mkdir "$directory/pictures"
for _ in 1 2; do
    show screenshot --json "$directory/pictures" | sed "s|$directory|DIRECTORY|"
done
show screenshot --json /no/such/folder
show overlay show "The battery is low"
show overlay hide
until_succeeds eval '! has_view two'
show views --json
show screensaver --json
kill "$window"
until_succeeds eval '! has_view org.example.events'
show views --json
show current --json
show overlay hide
until_succeeds grep -q serviceGone "$directory/changes"
show status --json
show views --json
echo "> changes"
# How many changes of the views one signal announces depends on the time between them.
uniq "$directory/changes"
