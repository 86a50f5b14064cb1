#!/usr/bin/env bash
# package.sh [FOLDER]: Debian packages of this tree in FOLDER (build/packages), with the compiler flags of
# Debian. Packing again gives the same bits: all times are that of the last commit.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
packages=$(realpath -m "${1:-$root/build/packages}")
build=$root/build/package

export SOURCE_DATE_EPOCH
SOURCE_DATE_EPOCH=$(git -C "$root" log -1 --format=%ct)
export DEB_BUILD_MAINT_OPTIONS="hardening=+all optimize=-lto"
flags() { dpkg-buildflags --get "$1"; }
export CXXFLAGS LDFLAGS
CXXFLAGS="$(flags CPPFLAGS) $(flags CXXFLAGS) -ffile-prefix-map=$root=."
LDFLAGS=$(flags LDFLAGS)

"$root/scripts/build.sh" package
mkdir -p "$packages"
cd "$build"
umask 022
cpack -B "$packages" >cpack.log || { cat cpack.log >&2; exit 1; }
rm -rf "$packages/_CPack_Packages"
ls "$packages"/*.deb
