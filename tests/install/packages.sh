#!/usr/bin/env bash
# usage: packages.sh BUILD WORK: the Debian packages can be made and hold the library and its headers.
set -euo pipefail
build=$1 work=$2
rm -rf "$work/packages"
cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/packages" >"$work/cpack.log" 2>&1 || {
    cat "$work/cpack.log"
    exit 1
}
status=0
holds() {
    local package=$1 pattern=$2
    # Read to its end: dpkg-deb complains about a reader that leaves early.
    dpkg-deb -c "$work"/packages/"$package"_*.deb | grep -E "$pattern" >/dev/null || {
        echo "$package does not hold $pattern"
        status=1
    }
}
holds libqlx0 '/libqlx\.so\.0$|/libqlx\.so\.0 ->'
holds libqlx-dev 'include/qlx/foundation/uobject\.h$'
holds libqlx-dev 'qlx-config\.cmake$'
dpkg-deb -f "$work"/packages/libqlx-dev_*.deb Depends | grep -q libqlx0 || {
    echo "libqlx-dev does not depend on libqlx0"
    status=1
}
exit $status
