#!/usr/bin/env bash
# Looks over the sources of the Windows build by Microsoft's rules, without Microsoft's compiler: clang for the MSVC
# target, with all that it warns of as an extension. The headers are mingw's, since there are no others here; so what
# Microsoft's own headers lack or have beyond them shows only on Windows. Nothing is built.
#
# usage: check_msvc.sh [FILE...]     all of them without names; status 1 when something was said
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
gcc=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-libgcc-file-name)")
build=build/win64
[ -d $build/boost-include ] || { echo "check_msvc: configure the preset win64 first" >&2; exit 2; }
export flags="--target=x86_64-pc-windows-msvc -fno-ms-compatibility -fms-compatibility-version=0 -fms-extensions
    -D__MINGW32__ -D__MINGW64__ -D__declspec=__declspec -D__uuidof(type)=GUID() -fcxx-exceptions -fexceptions -fsyntax-only -std=c++20
    -Wall -Wextra -Wpedantic -nostdinc++ -nostdlibinc
    -isystem $gcc/include/c++ -isystem $gcc/include/c++/x86_64-w64-mingw32 -isystem $gcc/include/c++/backward
    -isystem /usr/share/mingw-w64/include -isystem /usr/x86_64-w64-mingw32/include
    -I. -isystem $build/boost-include -isystem $build/cli11-include -isystem build/third_party/expat-src/expat/lib
    -isystem build/third_party/sndfile-src/include -DXML_STATIC -DHOST_DATA_FOLDER=\"\" -DQLX_GALLERY_FOLDER=\"\""
# Meant: an instance that is declared and exported at once, and braces left out inside braces. mingw's headers give
# their interfaces no identifiers for __uuidof.
flags+=" -Wno-dllexport-explicit-instantiation-decl -Wno-missing-braces"
check() {
    local building=
    case $1 in host/main.cpp | tools/* | examples/*) ;; host/*) building=-DSESSION_BUILDING ;; *) building=-DQLX_BUILDING ;; esac
    # shellcheck disable=SC2086 # one word a flag
    clang++-14 $flags $building "$1"
}
export -f check
if [ $# -gt 0 ]; then
    printf '%s\0' "$@"
else
    git ls-files -z '*.cpp' | grep -zvE '/(cairo|sdl|posix|generic)/|^(tests|fuzz|bench|debug)/'
fi | xargs -0 -n 1 -P "$(nproc)" bash -c 'check "$1" 2>&1' check | {
    ! grep -v '^[0-9]* warnings* generated\.$'
}
