#!/usr/bin/env bash
# usage: tst_with_x_server.sh PATH/with_x_server.sh
#
# What the tests rely on: the exit status, a window manager, privacy, and that nothing is left behind.

set -u

readonly with_x_server=$1
failures=0
box=$(mktemp -d) || exit 1
trap 'rm -rf "$box"' EXIT
mkdir "$box/tmp" "$box/tools"
export TMPDIR="$box/tmp"

expect() {
    local name=$1 expected=$2 actual=$3
    [ "$actual" = "$expected" ] && return
    echo "FAIL: $name: expected '$expected', got '$actual'" >&2
    failures=$((failures + 1))
}

litter() { ls -A "$TMPDIR"; }

"$with_x_server" true
expect "success is passed on" 0 $?
"$with_x_server" sh -c 'exit 7'
expect "failure is passed on" 7 $?
"$with_x_server" sh -c 'kill -SEGV $$' 2>/dev/null
expect "a crash is passed on" 139 $?
"$with_x_server" 2>/dev/null
expect "no program is wrong usage" 2 $?
expect "nothing is left after these" "" "$(litter)"

# shellcheck disable=SC2016
expect "arguments and standard input arrive" "a b|c|in" \
    "$(echo in | "$with_x_server" sh -c 'read -r line; echo "$1|$2|$line"' sh "a b" c)"
expect "the platform is X" xcb "$("$with_x_server" printenv QT_QPA_PLATFORM)"
expect "the screen is large" 1920x1080 "$("$with_x_server" xdotool getdisplaygeometry | tr ' ' x)"
expect "a window manager is at work" 1 \
    "$("$with_x_server" xprop -root _NET_SUPPORTING_WM_CHECK | grep -c 'window id # 0x')"
# shellcheck disable=SC2016
expect "home is a private place" 1 "$(HOME=/nowhere "$with_x_server" sh -c 'test -w "$HOME" && test -w "$XDG_RUNTIME_DIR" && echo 1')"

# Several at once, each on a display of its own.
for i in 1 2 3; do
    # shellcheck disable=SC2016
    "$with_x_server" sh -c 'echo $DISPLAY; sleep 1' >"$box/display.$i" &
done
wait
expect "displays of their own" 3 "$(sort -u "$box"/display.* | grep -c '^:')"
expect "nothing is left after several" "" "$(litter)"

# Stopped while the program runs.
for signal in INT TERM; do
    rm -f "$box/started"
    # A shell starts what is in the background deaf to INT. The display is told when the program runs.
    # shellcheck disable=SC2016
    env --default-signal=INT "$with_x_server" sh -c 'echo $DISPLAY >"$1.new"; mv "$1.new" "$1"; exec sleep 60' sh \
        "$box/started" &
    pid=$!
    until [ -e "$box/started" ]; do sleep 0.02; done
    kill -$signal $pid
    wait $pid
    status=$?
    [ $signal = INT ] && expected=130 || expected=143
    expect "status after $signal" "$expected" "$status"
    expect "nothing is left after $signal" "" "$(litter)"
    expect "the server is gone after $signal" 1 \
        "$(xprop -display "$(cat "$box/started")" -root 2>&1 | grep -c 'unable to open display')"
done

# Each missing tool is named with its package, and nothing is run.
for tool in bash mktemp rm mkdir cat sleep grep touch xdotool xprop; do
    ln -s "$(command -v $tool)" "$box/tools/$tool"
done
message=$(PATH="$box/tools" "$with_x_server" touch "$box/ran" 2>&1)
expect "status without a server" 125 $?
expect "what is missing is said" \
    "with_x_server.sh: Xvfb is not installed (package xvfb)
with_x_server.sh: openbox is not installed (package openbox)" "$message"
expect "the program is not run without a display" "" "$(ls "$box/ran" 2>/dev/null)"

# A manager that ends at once is an error, not a wait.
ln -s "$(command -v Xvfb)" "$(command -v xkbcomp)" "$box/tools/"
printf '#!/bin/sh\necho no session >&2\nexit 1\n' >"$box/tools/openbox"
chmod +x "$box/tools/openbox"
message=$(PATH="$box/tools:$PATH" "$with_x_server" touch "$box/ran" 2>&1)
expect "status without a manager" 125 $?
expect "the manager's words are passed on" "with_x_server.sh: window manager: it has ended
no session" "$message"
expect "nothing is left after a failed start" "" "$(litter)"

[ $failures -eq 0 ] && echo "all as expected"
exit $failures
