#!/bin/sh
# exported_names.sh LIBRARY LIST - the library defines exactly the listed dynamic symbols.
set -eu
have=$(mktemp)
want=$(mktemp)
trap 'rm -f "$have" "$want"' EXIT

# The address sanitizer adds a mark of its own to every data object, and musl's start files two functions.
nm -D --defined-only "$1" | awk '$NF !~ /^(__odr_asan\.|_init$|_fini$)/ {print $NF}' | LC_ALL=C sort -u > "$have"
sed 's/#.*//; s/[[:space:]]//g' "$2" | grep -v '^$' | LC_ALL=C sort > "$want"
[ -s "$have" ] || { echo "no symbols in $1"; exit 1; }

duplicates=$(uniq -d "$want")
[ -z "$duplicates" ] || { echo "listed twice:"; echo "$duplicates"; exit 1; }
status=0
missing=$(LC_ALL=C comm -13 "$have" "$want")
[ -z "$missing" ] || { echo "listed, but not exported:"; echo "$missing"; status=1; }
extra=$(LC_ALL=C comm -23 "$have" "$want")
[ -z "$extra" ] || { echo "exported, but not listed:"; echo "$extra"; status=1; }
exit $status
