#!/usr/bin/env bash
# usage: install_prefix.sh BUILD WORK: installs BUILD below WORK/plain and WORK/triplet.
set -euo pipefail
build=$1 work=$2
rm -rf "$work/plain" "$work/triplet"
install_into() {
    cmake "$build" -DCMAKE_INSTALL_LIBDIR="$2" >/dev/null
    cmake --install "$build" --prefix "$1" >/dev/null
}
# The build folder is handed back as it was.
before=$(sed -n 's/^CMAKE_INSTALL_LIBDIR:PATH=//p' "$build/CMakeCache.txt")
trap 'cmake "$build" -DCMAKE_INSTALL_LIBDIR="$before" >/dev/null' EXIT
install_into "$work/triplet" lib/x86_64-linux-gnu
install_into "$work/plain" lib
