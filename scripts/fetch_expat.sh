#!/usr/bin/env bash
# Unpacks Debian's expat source package, with Debian's patches, into FOLDER/expat-src. The Windows build compiles it,
# because Debian has no expat for that target. Nothing outside FOLDER changes: the deb-src entries are derived from the
# archives that this machine's apt already uses and live in a private source list.
#
# usage: fetch_expat.sh FOLDER
set -euo pipefail

# The upstream tarball never changes within a release; Debian's part does at point releases and is covered by the
# checksums in the .dsc, which apt checks against the signed index.
orig_name=expat_2.5.0.orig.tar.gz
orig_sha256=ab00ee05c7067fd10a35c5d2a4922ebba746ddd50ff83b79c828da17bbdf1757

folder=${1:?usage: fetch_expat.sh FOLDER}
mkdir -p "$folder"
folder=$(cd "$folder" && pwd)
source_dir=$folder/expat-src

# Two configure runs may share the folder.
exec 9>"$folder/.lock"
flock 9
[ -f "$source_dir/.complete" ] && exit 0

work=$folder/apt
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
    echo "fetch_expat.sh: apt on this machine uses no Debian archive; unpack expat 2.5.0 into $source_dir and" \
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
(cd "$work/download" && apt-get "${apt_options[@]}" source --download-only -qq expat)

echo "$orig_sha256  $work/download/$orig_name" | sha256sum --check --quiet
dpkg-source --no-check -x "$work"/download/expat_*.dsc "$source_dir" >/dev/null
touch "$source_dir/.complete"
rm -rf "$work" "$folder/$orig_name"
