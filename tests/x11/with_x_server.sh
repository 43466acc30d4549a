#!/usr/bin/env bash
# usage: with_x_server.sh PROGRAM [ARGUMENT...]
#
# Runs a program on an X server of its own, with a window manager, and passes its exit status on. Nothing is shown, no
# setting of the user is read, and nothing is left behind; any number may run at once.
#
# Exit status: the program's; 125 when there is no display to run it on, 2 for wrong usage.

# Functions that are called by way of others:
# shellcheck disable=SC2317

set -u

readonly no_display=125
readonly patience_seconds=30

if [ $# -eq 0 ]; then
    echo "usage: ${0##*/} PROGRAM [ARGUMENT...]" >&2
    exit 2
fi

# What the tests need, and the package of it.
missing=()
for tool in Xvfb:xvfb xdotool:xdotool openbox:openbox xprop:x11-utils; do
    command -v "${tool%%:*}" >/dev/null || missing+=("$tool")
done
if [ ${#missing[@]} -gt 0 ]; then
    for tool in "${missing[@]}"; do
        echo "${0##*/}: ${tool%%:*} is not installed (package ${tool##*:})" >&2
    done
    exit $no_display
fi

work=$(mktemp -d "${TMPDIR:-/tmp}/x-server.XXXXXX") || exit $no_display
server="" manager="" program=""

stop() {
    [ -n "$1" ] || return 0
    kill "$1" 2>/dev/null
    wait "$1" 2>/dev/null
}

clean_up() {
    trap - EXIT
    stop "$program"
    stop "$manager"
    stop "$server"
    rm -rf "$work"
}

trap clean_up EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

give_up() {
    echo "${0##*/}: $1" >&2
    cat "$2" >&2
    exit $no_display
}

# Waits until a condition holds, for as long as the process that is to bring it about lives.
wait_for() {
    local process=$1 log=$2 text=$3
    local -r deadline=$((SECONDS + patience_seconds))
    shift 3
    until "$@"; do
        kill -0 "$process" 2>/dev/null || give_up "$text: it has ended" "$log"
        [ $SECONDS -lt $deadline ] || give_up "$text: not ready after $patience_seconds s" "$log"
        sleep 0.02
    done
}

# Nothing of the session that this is started from reaches the programs below, and nothing of them gets out.
unset WAYLAND_DISPLAY SESSION_MANAGER DESKTOP_STARTUP_ID XDG_CURRENT_DESKTOP DESKTOP_SESSION XMODIFIERS
unset QT_IM_MODULE QT_QPA_PLATFORMTHEME QT_SCREEN_SCALE_FACTORS QT_FONT_DPI QT_XCB_GL_INTEGRATION
mkdir -m 700 "$work/home" "$work/runtime"
export HOME="$work/home" XDG_RUNTIME_DIR="$work/runtime" XAUTHORITY="$work/no-authority"
export XDG_CONFIG_HOME="$work/home/config" XDG_CACHE_HOME="$work/home/cache" XDG_DATA_HOME="$work/home/data"
export XDG_STATE_HOME="$work/home/state" XDG_CONFIG_DIRS="$work/home/site-config"
# No bus, not even one that is started on demand and stays.
export DBUS_SESSION_BUS_ADDRESS="unix:path=$work/runtime/no-bus"

# The server takes the first free display by itself and tells which.
touch "$work/display"
Xvfb -displayfd 3 -screen 0 1920x1080x24 -dpi 96 -nolisten tcp -noreset -extension GLX \
    3>"$work/display" >"$work/server.log" 2>&1 </dev/null &
server=$!
# The number counts only when its line is complete.
read_display() { read -r DISPLAY <"$work/display"; }
wait_for $server "$work/server.log" "X server" read_display
export DISPLAY=":$DISPLAY" QT_QPA_PLATFORM=xcb

# No bindings but the one that gives the focus: keys and buttons are all the program's.
cat >"$work/manager.xml" <<'SETTINGS'
<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>
  <desktops><number>1</number><popupTime>0</popupTime></desktops>
  <keyboard/>
  <mouse>
    <context name="Client">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
    </context>
  </mouse>
</openbox_config>
SETTINGS
openbox --sm-disable --config-file "$work/manager.xml" >"$work/manager.log" 2>&1 </dev/null &
manager=$!

# A manager is at work when the window that the root window names as the manager's names itself.
manages_windows() {
    local window
    window=$(xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null) || return 1
    window=${window##*# }
    [[ $window == 0x* ]] && xprop -id "$window" _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q "$window"
}
wait_for $manager "$work/manager.log" "window manager" manages_windows

# In the background, since a shell hears of a signal only while it waits.
"$@" <&0 &
program=$!
wait $program
status=$?
program=""
exit $status
