#!/bin/sh
# installs_only.sh CMAKE BUILD FILE - the installation of a build consists of this file.
set -eu
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
"$1" --install "$2" --prefix "$prefix" >/dev/null
installed=$(cd "$prefix" && find . ! -type d | sed 's|^\./||' | sort)
[ "$installed" = "$3" ] || { echo "installed:"; echo "$installed"; echo "expected: $3"; exit 1; }
