#!/usr/bin/env bash
# Unpacks a Debian source package, with Debian's patches, into FOLDER/NAME-src. The Windows build compiles what Debian
# has no packages of for that target. Nothing outside FOLDER changes: the deb-src entries are derived from the archives
# that this machine's apt already uses and live in a private source list.
#
# usage: fetch_source.sh FOLDER NAME PACKAGE ORIG_FILE ORIG_SHA256
#
# The upstream tarball never changes within a release; Debian's part does at point releases and is covered by the
# checksums in the .dsc, which apt checks against the signed index.
set -euo pipefail
usage="usage: fetch_source.sh FOLDER NAME PACKAGE ORIG_FILE ORIG_SHA256"
folder=${1:?$usage} name=${2:?$usage} package=${3:?$usage} orig_name=${4:?$usage} orig_sha256=${5:?$usage}

mkdir -p "$folder"
folder=$(cd "$folder" && pwd)
source_dir=$folder/$name-src

# Two configure runs may share the folder.
exec 9>"$folder/.lock"
flock 9
[ -f "$source_dir/.complete" ] && exit 0

work=$folder/apt-$name
rm -rf "$work" "$source_dir"
mkdir -p "$work/lists/partial" "$work/parts" "$work/download"

# Without the security archive: it keeps the index of a release longer than the source files of all its versions.
entries() {
    apt-get indextargets --format '$(ORIGIN)|$(LABEL)|$(REPO_URI)|$(RELEASE)|$(COMPONENT)' 'Created-By: Packages' |
        awk -F'|' '$1 == "Debian" && $2 == "Debian" && $5 == "main" { print "deb-src", $3, $4, $5 }' | sort -u
}
entries >"$work/parts/source.list"
if [ ! -s "$work/parts/source.list" ]; then
    # A machine whose index files were cleaned away does not know the origins.
    apt-get update -qq
    entries >"$work/parts/source.list"
fi
[ -s "$work/parts/source.list" ] || {
    echo "fetch_source.sh: apt on this machine uses no Debian archive; unpack $package into $source_dir and" \
        "create the file $source_dir/.complete" >&2
    exit 1
}

# The sandbox user could not write into a folder below somebody's home.
apt_options=(
    -o Dir::Etc::sourcelist=/dev/null
    -o Dir::Etc::sourceparts="$work/parts"
    -o Dir::State::lists="$work/lists"
    -o Dir::Cache="$work"
    -o APT::Sandbox::User="$(id -un)"
    -o Debug::NoLocking=1
)
apt-get "${apt_options[@]}" update -qq
(cd "$work/download" && apt-get "${apt_options[@]}" source --download-only -qq "$package")

echo "$orig_sha256  $work/download/$orig_name" | sha256sum --check --quiet
# In the work folder: unpacking leaves the tarball beside the source.
dpkg-source --no-check -x "$work/download/${package}"_*.dsc "$work/unpacked" >/dev/null
mv "$work/unpacked" "$source_dir"
touch "$source_dir/.complete"
rm -rf "$work"
