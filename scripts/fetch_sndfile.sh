#!/usr/bin/env bash
# Unpacks Debian's libsndfile into FOLDER/sndfile-src; see fetch_source.sh.
#
# usage: fetch_sndfile.sh FOLDER
set -euo pipefail
exec "$(dirname "${BASH_SOURCE[0]}")/fetch_source.sh" "${1:?usage: fetch_sndfile.sh FOLDER}" sndfile libsndfile \
    libsndfile_1.2.0.orig.tar.gz 62dc4e2bcd45f6f0e89cbc3522cc90eb174dca0eef0a0d19ead289833b390cd7
