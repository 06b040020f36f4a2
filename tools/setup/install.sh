#!/bin/bash
# Install the Debian packages of the named groups (packages.txt) that are missing.
#
#   tools/setup/install.sh GROUP...
#   tools/setup/install.sh --optional GROUP...   a package that cannot be had is only reported
#
# Needs root or sudo only when something is missing, and a network only for what the configured
# Debian mirror has to supply.
set -euo pipefail
cd "$(dirname "$0")"

optional=no
if [ "${1:-}" = --optional ]; then
    optional=yes
    shift
fi
[ $# -gt 0 ] || { echo "usage: $0 [--optional] GROUP..." >&2; exit 2; }

packages=()
for group in "$@"; do
    mapfile -t of_group < <(awk -v group="$group" '$1 == group { print $2 }' packages.txt)
    [ ${#of_group[@]} -gt 0 ] || { echo "install.sh: packages.txt has no group '$group'" >&2; exit 2; }
    packages+=("${of_group[@]}")
done

installed() { dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q ' installed$'; }

missing=()
for package in "${packages[@]}"; do
    installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
        echo "install.sh: missing: ${missing[*]}; install them as root, there is no sudo here" >&2
        exit 1
    }
    as_root=(sudo)
fi

# env: sudo does not hand variables on.
apt() { "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 apt-get -q -o Acquire::Retries=3 "$@"; }

# "name:architecture" is of another architecture than the machine's.
for package in "${missing[@]}"; do
    architecture=${package#*:}
    if [ "$architecture" != "$package" ] && ! dpkg --print-foreign-architectures | grep -qx "$architecture"; then
        "${as_root[@]}" dpkg --add-architecture "$architecture"
    fi
done

echo "set-up: installing ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# One list of many that cannot be fetched need not matter: the installation decides.
apt update >"$log" 2>&1 || { echo "set-up: apt-get update reported errors:" >&2; grep -E '^(E|Err|W):' "$log" >&2 || true; }
if ! apt install -y --no-install-recommends "${missing[@]}" >"$log" 2>&1; then
    if [ $optional = yes ]; then
        echo "set-up: could not be had: ${missing[*]}"
        exit 1
    fi
    tail -n 30 "$log" >&2
    echo "install.sh: installation failed" >&2
    exit 1
fi
