#!/usr/bin/env bash
# usage: guide.sh PREFIX ROOT: builds the programs that README.md and docs/ show against PREFIX, and runs them.
set -euo pipefail
prefix=$1 root=$2
work=$prefix-guide
rm -rf "$work"
cmake -G Ninja -S "$root/tests/guide" -B "$work" -DCMAKE_PREFIX_PATH="$prefix" -DQLX_PREFIX="$prefix" \
    -DQLX_ROOT="$root" >"$work.log" 2>&1 || {
    cat "$work.log"
    exit 1
}
ninja -C "$work" >"$work.log" 2>&1 || {
    cat "$work.log"
    exit 1
}
ctest --test-dir "$work" -j 2 --output-on-failure
