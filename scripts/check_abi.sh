#!/usr/bin/env bash
# Compares the library's binary interface with that of an earlier revision: slots of virtual operations, order and size
# of members, exported functions. Additions pass; what would break a host that was built before fails.
#
# usage: check_abi.sh REVISION
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
revision=${1:?usage: ./dev abi REVISION}
commit=$(git rev-parse --verify --short "$revision^{commit}")
jobs=${QLX_JOBS:-$(nproc)}

# dump SOURCE BUILD OUT
dump() {
    cmake --preset abi -S "$1" -B "$2" >/dev/null
    ninja -C "$2" -j "$jobs" qlx >/dev/null
    abidw --exported-interfaces-only --out-file "$3" "$2/bin/libqlx.so"
}

mkdir -p build/abi
old=build/abi/$commit.abi
if [ ! -f "$old" ]; then
    tree=$PWD/build/abi/tree-$commit
    git worktree add --detach "$tree" "$commit" >/dev/null 2>&1
    trap 'git worktree remove --force "$tree"' EXIT
    (cd "$tree" && dump . build/abi "$OLDPWD/$old")
fi
dump . build/abi build/abi/new.abi
# The status is a set of bits: 1 and 2 say that the tool failed, 4 that something changed, 8 that it broke.
status=0
abidiff "$old" build/abi/new.abi || status=$?
[ $((status & 3)) = 0 ] || exit 1
if [ $((status & 8)) != 0 ]; then
    echo "the binary interface of $commit is broken"
    exit 1
fi
echo "hosts built against $commit go on working"
