#!/usr/bin/env bash
# build.sh PRESET [target...]: installs what is missing, configures and builds. Silent when there
# is nothing to do; what it says goes to standard error.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
preset=$1
shift

"$root/scripts/install-dependencies.sh"

build=$root/build/$preset
mkdir -p "$build"
# Two callers at once take turns; the lock ends with this process.
exec 9>"$build/.lock"
flock 9

home=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$build/CMakeCache.txt" 2>/dev/null || true)
if [ ! -f "$build/build.ninja" ] || [ "$home" != "$root" ]; then
    # --fresh: a folder that was moved, or a configuration that was cut short, starts again.
    (cd "$root" && cmake --fresh --preset "$preset") </dev/null >"$build/configure.log" 2>&1 9>&- || {
        cat "$build/configure.log" >&2
        rm -f "$build/build.ninja"
        exit 1
    }
fi

plan=$(ninja -C "$build" -n "$@" </dev/null 2>&1 9>&- || true)
case $plan in
    *'no work to do'*) exit 0 ;;
esac
echo "Building ($preset) ..." >&2
ninja -C "$build" "$@" </dev/null >&2 9>&-
