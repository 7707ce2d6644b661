#!/usr/bin/env bash
# usage: host.sh PREFIX ROOT: builds a copy of the session host, away from the framework's sources, against PREFIX, and
# plays its demonstration.
set -euo pipefail
prefix=$1 root=$2
work=$prefix-host
rm -rf "$work"
mkdir -p "$work"
cp -r "$root/host" "$work/host"
{
    cmake -G Ninja -S "$work/host" -B "$work/build" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release
    ninja -C "$work/build"
} >"$work/log" 2>&1 || {
    cat "$work/log"
    exit 1
}
"$work/build/session_host" --play "$work/host/data/demo.play" --headless "$work/demo.png"
