#!/usr/bin/env bash
# Installs every Debian 12 package that building, testing and running need. Asks no question,
# prints nothing when all are there, and writes only to standard error.
set -euo pipefail
export LC_ALL=C

packages=(
    g++ cmake ninja-build mold
    qtbase5-dev          # undo stack, cursor, text handling, XML
    libvtk9-dev          # tables and the table pipeline
    libboost-dev         # signals, shared pointers, formats
    libopenblas-dev liblapacke-dev libnanoflann-dev   # fitting
    libcli11-dev nlohmann-json3-dev libssl-dev     # the program
    libqwt-qt5-dev libqt5svg5-dev fonts-dejavu-core     # pictures, and the letters in them
    libxlsxwriter-dev    # workbooks
    libgtest-dev libgmock-dev librapidcheck-dev libbenchmark-dev     # tests, benchmarks
    python3-pybind11 python3-dev python3-sklearn python3-pandas     # the Python package
    python3-pip python3-venv python3-setuptools python3-wheel mypy     # its tests
    python3-distributed     # the test of examples/dask
    sqlite3 libsqlite3-dev     # the user guide's model as a function of SQL
    clang libclang-rt-14-dev llvm-14     # sanitizers and fuzzers, names in their reports
    doxygen     # the API reference, whose warnings fail a test
    pkgconf     # tests build against the installed libraries
    locales     # tests run with a decimal comma
    python3 gnumeric     # tests run exported modules and evaluate exported workbooks
)

missing=()
installed=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "${packages[@]}" 2>/dev/null || true)
for package in "${packages[@]}"; do
    grep -qx "$package installed" <<<"$installed" || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -eq 0 ]; then
    as_root=()
elif command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
    as_root=(sudo -n)
else
    echo "Please have these packages installed, you have no right to do it here (neither root nor" \
        "sudo without a password): apt-get install ${missing[*]}" >&2
    exit 1
fi

apt() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C \
        apt-get -q -y -o DPkg::Lock::Timeout=600 -o Dpkg::Use-Pty=0 "$@" </dev/null >&2
}

echo "Installing ${missing[*]}" >&2
# The lists may be empty or old; with a source that does not answer the others may still do.
apt update || true
apt install --no-install-recommends "${missing[@]}" || {
    echo "The packages could not be installed: ${missing[*]}" >&2
    exit 1
}
