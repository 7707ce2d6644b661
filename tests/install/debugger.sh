#!/usr/bin/env bash
# usage: debugger.sh PREFIX ROOT: gdb, told nothing but that the prefix is trusted, shows the value types readably.
set -euo pipefail
prefix=$1 root=$2
work=$prefix-debugger
rm -rf "$work"
mkdir -p "$work"
g++ -std=c++20 -g -O0 -I"$prefix/include" -o "$work/consumer" "$root/tests/consumer/main.cpp" \
    -L"$prefix/lib" -lqlx -Wl,-rpath,"$prefix/lib"
line=$(grep -n 'the debugger stops here' "$root/tests/consumer/main.cpp" | cut -d: -f1)
gdb -nx -batch -iex "add-auto-load-safe-path $prefix" -ex "set debuginfod enabled off" \
    -ex "break main.cpp:$line" -ex run \
    -ex "print point" -ex "print rect" -ex "print viewPoint" -ex "print viewRect" -ex "print region" \
    -ex "print color" -ex "print id" -ex "print counted" -ex "print nothing" -ex 'print $fourcc(0x646c6f67)' \
    -ex "kill" "$work/consumer" >"$work/log" 2>&1 || true
status=0
expect() {
    grep -qE -- "$1" "$work/log" || {
        echo "gdb did not show: $1"
        status=1
    }
}
expect '= \(3, -4\)$'
expect '= \(1, 2\)-\(30, 40\) 29x38$'
expect '= \(5, 6\)$'
expect '= \(10, 20\)-\(30, 50\) 20x30$'
expect '= region of 2 = \{\(0, 0\)-\(10, 10\) 10x10, \(20, 0\)-\(30, 10\) 10x10\}$'
expect '= #1234 0000 FFFF FFFF$'
expect "= 'dlog'$"
expect '= HostCounted at 0x[0-9a-f]+, count 1'
expect 'mAnswer = 42'
expect '= null$'
expect "= \"'dlog'\""
[ $status = 0 ] || cat "$work/log"
exit $status
