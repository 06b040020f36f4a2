#!/bin/sh
# symbols_file.sh LIBRARY PACKAGE - the symbols file of a Debian package holds exactly what its library
# exports. 77 = there is no dpkg-gensymbols here.
set -eu
cd "$(dirname "$0")/../.."
command -v dpkg-gensymbols >/dev/null || exit 77
scratch=$(mktemp)
trap 'rm -f "$scratch"' EXIT
version=$(sed -nE '1s/.*\((.*)\).*/\1/p' debian/changelog)
# 4: a new name, or one that is gone, is an error; the latter only for a version behind that in which the
# name appeared.
dpkg-gensymbols -c4 -p"$2" -v"$version+1" -e"$1" -Idebian/"$2".symbols -O"$scratch"
[ "$(grep -c '@' "$scratch")" -gt 100 ]
