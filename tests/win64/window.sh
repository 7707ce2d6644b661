#!/usr/bin/env bash
# usage: window.sh BUILD WORK PAINTER
#
# A user at the session host's window in wine: types a time into the main counter, drags a selection, undoes and redoes.
# What the host recorded is played again without a display and must end in the same values; with GDI, which draws the
# headless window too, in the same pixels. Status 77: something is missing here.
set -euo pipefail
build=$1 work=$2 painter=$3
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
for tool in xdotool import compare convert; do
    command -v $tool >/dev/null || { echo "skipped: $tool is not installed"; exit 77; }
done
[ -n "${DISPLAY:-}" ] || { echo "skipped: there is no display"; exit 77; }
rm -rf "$work"
mkdir -p "$work"
cd "$work"
status=0
fail() {
    echo "$painter: $*" >&2
    status=1
}

# An hour and more of silence, which takes no room on the disk: eight bits, one channel, 8000 Hz.
seconds=4000
bytes=$((seconds * 8000))
word() { printf "\\x$(printf %02x $(($1 & 255)))\\x$(printf %02x $(($1 >> 8 & 255)))"; }
long() { word $(($1 & 65535)) && word $(($1 >> 16)); }
{
    printf RIFF && long $((bytes + 36)) && printf 'WAVEfmt ' && long 16
    word 1 && word 1 && long 8000 && long 8000 && word 1 && word 8 && printf data && long $bytes
} >silence.wav
truncate -s $((bytes + 44)) silence.wav

# A desktop that another display, or none, began would have another size.
"$root/scripts/wine-down"
"$root/scripts/wine-up"
"$root/scripts/wine-run" "$build/bin/session_host.exe" --painter "$painter" --record user.play silence.wav \
    </dev/null >host.log 2>&1 &
host=$!
trap 'kill $host 2>/dev/null || true' EXIT
window=$(timeout 60 xdotool search --sync --onlyvisible --name 'Veltra Session' | head -n 1) || true
[ -n "$window" ] || { cat host.log; fail "the window did not appear within a minute"; exit 1; }
xdotool windowfocus "$window"

# Waits for the window to have drawn what was done: two equal pictures in a row.
settle() {
    local before= now=
    for _ in $(seq 40); do
        now=$(import -window "$window" rgb:- | cksum)
        [ "$now" != "$before" ] || return 0
        before=$now
        sleep 0.25
    done
}
# Positions are those of the client area, below the frame where the system draws one.
click() {
    xdotool mousemove --window "$window" "$1" "$2" click 1
    sleep 0.7 # no double click with the next one
}
settle
click 74 181 # start
xdotool type --delay 60 1000
xdotool key Return
settle
xdotool mousemove --window "$window" 420 400 mousedown 1
for x in 440 480 520 560 600; do
    xdotool mousemove --window "$window" $x 405
    sleep 0.05
done
xdotool mouseup 1
settle
click 664 181 # tempo
xdotool type --delay 60 96
xdotool key Return
settle
xdotool key ctrl+z # takes the drag back
settle
click 180 62 # the main counter
xdotool type --delay 60 01:02:03:04
xdotool key Return
settle
import -window "$window" window.png
xdotool key ctrl+q
for _ in $(seq 100); do
    kill -0 $host 2>/dev/null || break
    sleep 0.1
done
if kill -0 $host 2>/dev/null; then
    fail "the host did not end when it was told to quit"
    exit 1
fi
wait $host || fail "the host ended with status $?: $(cat host.log)"

# The same again without a display, with what a user reads at the end.
grep -v '^chord Ctrl+Q' user.play >played.play
cat >>played.play <<'SCRIPT'
expect 'main' "01:02:03:04"
expect 'star' "00:00:10:00"
expect 'endt' "00:00:10:00"
expect 'temp' "96"
picture "played.png"
SCRIPT
"$root/scripts/wine-run" "$build/bin/session_host.exe" --play played.play silence.wav </dev/null >played.log 2>&1 ||
    fail "the recording played again: $(cat played.log)"
if [ "$painter" = gdi ]; then
    # The picture ends where the screen does; a hundredth is what rounding does to a glyph's shades.
    convert played.png -crop "$(identify -format %wx%h window.png)+0+0" +repage shown.png
    differing=$(compare -metric AE -fuzz 2% window.png shown.png differences.png 2>&1) || true
    [ "$differing" = 0 ] || fail "$differing pixels differ from the window's, see $work/differences.png"
fi
exit $status
