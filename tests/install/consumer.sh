#!/usr/bin/env bash
# usage: consumer.sh find_package|pkg_config PREFIX ROOT: builds tests/consumer against PREFIX and runs it.
set -euo pipefail
way=$1 prefix=$2 root=$3
work=$prefix-consumer-$way
rm -rf "$work"
mkdir -p "$work"
case $way in
find_package)
    cmake -G Ninja -S "$root/tests/consumer" -B "$work" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_FLAGS="-g" >/dev/null
    ninja -C "$work" >/dev/null
    "$work/consumer"
    ;;
pkg_config)
    libdir=$(dirname "$(dirname "$(find "$prefix" -name qlx.pc)")")
    export PKG_CONFIG_PATH=$libdir/pkgconfig
    # shellcheck disable=SC2046 # one word a flag
    g++ -o "$work/consumer" "$root/tests/consumer/main.cpp" $(pkg-config --cflags --libs qlx)
    LD_LIBRARY_PATH=$libdir "$work/consumer"
    ;;
esac
