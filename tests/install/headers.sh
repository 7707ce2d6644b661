#!/usr/bin/env bash
# usage: headers.sh PREFIX ROOT: every header of the library is installed in the folder it has in the source.
set -euo pipefail
prefix=$1 root=$2
cd "$root"
missing=$(comm -23 \
    <(find basekit mediakit newfilelibs qlx app -name '*.h' -not -path '*/win32/*' 2>/dev/null | sort) \
    <(cd "$prefix/include" && find . -name '*.h' | sed 's|^\./||' | sort))
[ -z "$missing" ] || {
    echo "not installed:"
    echo "$missing"
    exit 1
}
