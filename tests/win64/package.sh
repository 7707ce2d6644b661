#!/usr/bin/env bash
# usage: package.sh BUILD WORK
#
# The zip, unpacked elsewhere, has everything its programs load, and they work there: the host draws its window from
# the description in the package, and the tool checks it.
set -euo pipefail
build=$1 work=$2
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
rm -rf "$work"
mkdir -p "$work/zip" "$work/un packed"
cpack --config "$build/CPackConfig.cmake" -G ZIP -B "$work/zip" >"$work/cpack.log" 2>&1 || {
    cat "$work/cpack.log"
    exit 1
}
zips=("$work"/zip/*.zip)
[ ${#zips[@]} = 1 ] || { echo "one zip was expected: ${zips[*]}"; exit 1; }
python3 -m zipfile -e "${zips[0]}" "$work/un packed"
cd "$work/un packed"/*/bin
status=0
fail() {
    echo "$*" >&2
    status=1
}

# What a program loads comes with the package or with Windows.
for file in *.exe *.dll; do
    for dll in $(x86_64-w64-mingw32-objdump -p "$file" | sed -n 's/.*DLL Name: //p'); do
        [ -f "$dll" ] || case ${dll,,} in
        kernel32.dll | user32.dll | gdi32.dll | imm32.dll | ole32.dll | msvcrt.dll | shell32.dll | advapi32.dll | \
            comdlg32.dll | shlwapi.dll | ucrtbase.dll | api-ms-win-*) ;;
        *) fail "$file loads $dll, which is not in the package" ;;
        esac
    done
done
for file in qlx.dll session_host.exe qlxview.exe libsndfile.dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll; do
    [ -f $file ] || fail "bin/$file is missing"
done
for file in include/qlx/views/uview.h lib/cmake/qlx/qlx-config.cmake lib/libqlx.dll.a share/doc/qlx/LICENSE; do
    [ -f "../$file" ] || fail "$file is missing"
done

run() { "$root/scripts/wine-run" "$@" </dev/null; }
data=../share/qlx/host/data
run session_host.exe --headless picture.png >host.log 2>&1 || fail "session_host: $(cat host.log)"
[ "$(identify -format %wx%h picture.png 2>/dev/null)" = 1280x772 ] || fail "session_host drew no window of 1280 by 772"
run qlxview.exe --load libsession_views.dll check $data/session.xml >check.log 2>&1 ||
    fail "qlxview check: $(cat check.log)"
if grep -q 'is not known' check.log; then
    fail "qlxview does not know the classes of the library it loaded: $(cat check.log)"
fi
# The description that the host reads is the package's own.
mv $data/session.xml $data/kept.xml
echo '<broken' >$data/session.xml
if run session_host.exe --headless broken.png >host.log 2>&1; then
    fail "session_host does not read the description of its package"
fi
grep -q 'session.xml' host.log || fail "session_host does not say what it cannot read: $(cat host.log)"
mv $data/kept.xml $data/session.xml
exit $status
