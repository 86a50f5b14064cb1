#!/usr/bin/env bash
# Installs the open peers that Debian ships, for compare.py. Not needed for building or testing.
set -euo pipefail
export LC_ALL=C

packages=(python3-numpy python3-openturns python3-sklearn)

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
apt update || echo "The package lists could not be renewed; trying with those that are here." >&2

# One by one: a peer that cannot be had does not keep the others away.
failed=()
for package in "${missing[@]}"; do
    apt install --no-install-recommends "$package" || failed+=("$package")
done
if [ ${#failed[@]} -gt 0 ]; then
    echo "These packages could not be installed, the comparison runs without them: ${failed[*]}" >&2
    exit 1
fi
