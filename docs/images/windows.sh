#!/usr/bin/env bash
# Makes windows-gdi.png, windows-direct2d.png and windows-sdl.png anew: the session host's window in the same state, in
# wine and on Linux. Needs build/win64 and build/release with session_host built.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
if [ -z "${QLX_PICTURES_DISPLAY:-}" ]; then
    number=$(mktemp)
    Xvfb -displayfd 7 -screen 0 1400x900x24 -nolisten tcp 7>"$number" >/dev/null 2>&1 &
    server=$!
    trap 'kill $server' EXIT
    while [ ! -s "$number" ]; do sleep 0.1; done
    DISPLAY=:$(cat "$number") QLX_PICTURES_DISPLAY=yes "$0"
    exit
fi

picture() {
    local name=$1 host window
    shift
    "$@" </dev/null >/dev/null 2>&1 &
    host=$!
    window=$(timeout 60 xdotool search --sync --onlyvisible --name 'Veltra Session' | head -n 1)
    xdotool windowfocus "$window"
    sleep 2
    xdotool mousemove --window "$window" 74 181 click 1
    xdotool type --delay 60 2000
    xdotool key Return
    sleep 0.7
    xdotool mousemove --window "$window" 322 181 click 1
    xdotool type --delay 60 1500
    xdotool key Return
    sleep 0.7
    xdotool mousemove --window "$window" 180 62 click 1
    xdotool type --delay 60 2307
    xdotool key Return
    sleep 2
    import -window "$window" -strip "docs/images/windows-$name.png"
    xdotool key ctrl+q
    wait $host
}
picture gdi scripts/wine-run build/win64/bin/session_host.exe --painter gdi
picture direct2d scripts/wine-run build/win64/bin/session_host.exe --painter direct2d
picture sdl env SDL_VIDEODRIVER=x11 build/release/bin/session_host
