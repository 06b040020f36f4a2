#!/bin/sh
# relocations.sh LIBRARY MOST - the loader has at most so many records to work off. A table of pointers that
# is written out in the source costs one a pointer.
set -eu
records=$(LC_ALL=C readelf --relocs --wide "$1" | grep -cE '^[0-9a-f]{8,16} ') || true
[ "$records" -gt 0 ] || { echo "no relocation records in $1"; exit 1; }
echo "$records relocation records"
[ "$records" -le "$2" ] || { echo "more than $2"; exit 1; }
