#!/usr/bin/env bash
# release.sh [FOLDER]: a release of what is committed, in FOLDER (build/dist): sources, Debian packages, a
# wheel, the binary interfaces, the components with their licences, checksums. The version is that of CMakeLists.txt.
set -euo pipefail
export PATH=/usr/bin:$PATH # Debian's Python, which has the packages that the wheel is built with
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=$(realpath -m "${1:-$root/build/dist}")
version=$(sed -n 's/^project(surrogatemodel VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")

fail() { echo "$1" >&2; exit 1; }
[ -z "$(git -C "$root" status --porcelain)" ] || fail "Commit first: a release is made of what is committed."
changes=$(sed -n 's/^## //p' "$root/CHANGELOG.md" | head -n 1)
[ "$changes" = "$version" ] || fail "CHANGELOG.md begins with \"$changes\", the version is $version."

[ ! -e "$folder" ] || fail "$folder exists already."
mkdir -p "$folder"
git -C "$root" archive --prefix="surrogatemodel-$version/" -o "$folder/surrogatemodel-$version.tar.gz" HEAD
"$root/scripts/package.sh" "$folder"
python3 -m pip wheel -q --no-index --no-build-isolation --no-deps -w "$folder" "$root/python"
"$root/scripts/abi.sh" record "$folder/abi"
tar -C "$folder" --remove-files -czf "$folder/surrogatemodel-$version-abi.tar.gz" abi
sed '/^## For building/,$d' "$root/docs/dependencies.md" >"$folder/COMPONENTS.md"
cd "$folder"
sha256sum -- * >SHA256SUMS
ls "$folder"
