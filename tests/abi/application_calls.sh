#!/bin/sh
# application_calls.sh PROGRAM LIST HEADER - the names that nvrhal.h says an application needs are those
# that the recorder is linked against. LIST has all exported names.
set -eu
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
export LC_ALL=C

sed 's/#.*//; s/[[:space:]]//g' "$2" | grep -v '^$' | sort -u >"$dir/exported"
# Data objects may have a copy in the program, so that not only undefined names count.
nm -D "$1" | awk '{ sub(/@.*/, "", $NF); print $NF }' | sort -u | comm -12 - "$dir/exported" >"$dir/used"
[ -s "$dir/used" ] || { echo "$1 uses nothing of the library"; exit 1; }
awk '/^ \* The calls of an application$/ { on = 1; next } /^ \* [A-Z]/ { on = 0 } on && /^ \*     /' "$3" |
    tr -c 'A-Za-z0-9_\n' '\n' | sort -u | comm -12 - "$dir/exported" >"$dir/told"

status=0
missing=$(comm -23 "$dir/used" "$dir/told")
[ -z "$missing" ] || { echo "used, but not among the calls of an application:"; echo "$missing"; status=1; }
extra=$(comm -13 "$dir/used" "$dir/told")
[ -z "$extra" ] || { echo "among the calls of an application, but not used:"; echo "$extra"; status=1; }
exit $status
