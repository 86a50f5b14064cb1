#!/usr/bin/env bash
# abi.sh record FOLDER: writes the binary interface of each public library to FOLDER/LIBRARY.abi.
# abi.sh compare FOLDER: prints what has changed since, but for additions; ends with 1 if anything has:
# programs that were built then may no longer run.
# Both read the package build (scripts/package.sh), which has debug information, and count only types of
# public headers.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
mode=$1
folder=$(realpath -m "$2")
build=$root/build/package
command -v abidw >/dev/null || { echo "Please install abigail-tools." >&2; exit 1; }

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cmake --install "$build" --prefix "$stage" --component development >/dev/null
mkdir -p "$folder"
result=0
for name in $(sed -n 's/^\(\w*\): .*/\1/p' "$root/cmake/exported-names.txt" | sort -u); do
    library=$build/lib/lib$name.so
    if [ "$mode" = record ]; then
        abidw --headers-dir "$stage/include" --drop-private-types --no-corpus-path --no-comp-dir-path \
            --no-show-locs --out-file "$folder/$name.abi" "$library"
        continue
    fi
    abidiff --headers-dir2 "$stage/include" --drop-private-types --no-added-syms "$folder/$name.abi" \
        "$library" || { echo "$name has changed."; result=1; }
done
exit $result
