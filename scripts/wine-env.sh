# Sourced by wine-up, wine-run and wine-down: one wine prefix for all builds of a checkout, inside its build folder,
# since a prefix takes 700 MB and ten seconds to make. All of them act on this prefix only.
qlx_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${QLX_WINEPREFIX:-$qlx_root/build/wine-prefix}
export WINEARCH=win64
# No hint about the missing 32-bit side, no installers for .NET and HTML, no desktop menu entries. A fault inside a
# window procedure shows only in the seh channel, as KiUserCallbackDispatcher.
export WINEDEBUG=${WINEDEBUG:--all,err+seh}
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-"mscoree,mshtml=;winemenubuilder.exe=d;winedbg.exe=d"}

# The server keeps every descriptor that its first program had, so a test runner that waits for the end of a pipe would
# wait for the server. It is therefore started and warmed with closed descriptors. It ends by itself 60 s after the
# last program.
wine_up() {
    mkdir -p "$WINEPREFIX"
    exec 9>"$WINEPREFIX/.lock"
    flock 9
    if [ ! -f "$WINEPREFIX/.ready" ]; then
        wine wineboot -i </dev/null >/dev/null 2>&1 9>&-
        wineserver -w 9>&- || true
        touch "$WINEPREFIX/.ready"
    fi
    # Status 2 says that one is running already.
    wineserver -p60 </dev/null >/dev/null 2>&1 9>&- || true
    wine cmd /c exit </dev/null >/dev/null 2>&1 9>&-
    flock -u 9
    exec 9>&-
}
