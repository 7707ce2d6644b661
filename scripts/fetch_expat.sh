#!/usr/bin/env bash
# Unpacks Debian's expat into FOLDER/expat-src; see fetch_source.sh.
#
# usage: fetch_expat.sh FOLDER
set -euo pipefail
exec "$(dirname "${BASH_SOURCE[0]}")/fetch_source.sh" "${1:?usage: fetch_expat.sh FOLDER}" expat expat \
    expat_2.5.0.orig.tar.gz ab00ee05c7067fd10a35c5d2a4922ebba746ddd50ff83b79c828da17bbdf1757
