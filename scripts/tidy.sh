#!/usr/bin/env bash
# tidy.sh [file...]: clang-format and clang-tidy over our own code; both are to find nothing.
# Needs clang-format and clang-tidy of Debian 12 (version 14), which building does not.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
files=("$@")
[ ${#files[@]} -gt 0 ] || mapfile -t files < <(git ls-files '*.cpp')
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run -Werror
[ -f build/release/compile_commands.json ] || cmake --preset release >/dev/null

# GCC's own options are none of clang's business, nor is how GoogleTest's macros for types may be
# called.
tidy() {
    xargs -0 -r -n 4 -P "$(nproc)" clang-tidy -p build/release --quiet \
        --extra-arg=-Wno-unknown-warning-option \
        --extra-arg=-Wno-gnu-zero-variadic-macro-arguments "$@"
}

# The analyzer follows every branch of GoogleTest's macros, for minutes a file: tests go without it,
# the sanitizer build runs them.
ours=()
tests=()
for file in "${files[@]}"; do
    case $file in
        */tests/*) tests+=("$file") ;;
        *) ours+=("$file") ;;
    esac
done
[ ${#ours[@]} -eq 0 ] || printf '%s\0' "${ours[@]}" | tidy
[ ${#tests[@]} -eq 0 ] || printf '%s\0' "${tests[@]}" | tidy '--checks=-clang-analyzer-*'
