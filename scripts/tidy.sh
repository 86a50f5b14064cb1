#!/usr/bin/env bash
# tidy.sh [file...]: clang-format and clang-tidy over our own code; both are to find nothing.
# Needs clang-format and clang-tidy of Debian 12 (version 14), which building does not.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
files=("$@")
[ ${#files[@]} -gt 0 ] || mapfile -t files < <(git ls-files '*.cpp')
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run -Werror
# With the options of clang++, and without precompiled headers, which nothing has built here.
[ -f build/tidy/compile_commands.json ] ||
    cmake --preset clang -B build/tidy -D CMAKE_DISABLE_PRECOMPILE_HEADERS=ON >/dev/null

tidy() {
    xargs -0 -r -n 4 -P "$(nproc)" clang-tidy -p build/tidy --quiet "$@"
}

# The analyzer follows every branch of GoogleTest's macros, for minutes a file, and takes the counter
# of a benchmark's loop for a forgotten value: tests and benchmarks go without it.
ours=()
tests=()
for file in "${files[@]}"; do
    case $file in
        */tests/* | bench/*) tests+=("$file") ;;
        *) ours+=("$file") ;;
    esac
done
found=0
[ ${#ours[@]} -eq 0 ] || printf '%s\0' "${ours[@]}" | tidy || found=1
[ ${#tests[@]} -eq 0 ] || printf '%s\0' "${tests[@]}" | tidy '--checks=-clang-analyzer-*' || found=1
exit $found
