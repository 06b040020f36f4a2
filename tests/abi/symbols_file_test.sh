#!/bin/sh
# symbols_file_test.sh LIBRARY PACKAGE - that symbols_file.sh finds a name that is gone and one that is
# new. 77 = there is no dpkg-gensymbols here.
set -eu
command -v dpkg-gensymbols >/dev/null || exit 77
here=$(cd "$(dirname "$0")" && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/tests/abi"
cp "$here/symbols_file.sh" "$tree/tests/abi"
cp -r "$here/../../debian" "$tree/debian"
symbols=$tree/debian/$2.symbols
check() { "$tree/tests/abi/symbols_file.sh" "$1" "$2" >"$tree/said" 2>&1; }

check "$1" "$2" || { cat "$tree/said"; echo "the symbols file as it is does not match"; exit 1; }
sed -i '$a\ a_name_that_is_gone@Base 1.0' "$symbols"
! check "$1" "$2" || { echo "a name that is gone is not found"; exit 1; }
sed -i '$d' "$symbols"
sed -i '$d' "$symbols"
! check "$1" "$2" || { echo "a name that is new is not found"; exit 1; }
