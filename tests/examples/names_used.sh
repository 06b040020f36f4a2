#!/bin/sh
# names_used.sh PROGRAM LIST PAGE - PAGE says with how many names of the library the example gets by: as many
# as PROGRAM is linked against. LIST has all exported names.
set -eu
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
export LC_ALL=C

sed 's/#.*//; s/[[:space:]]//g' "$2" | grep -v '^$' | sort -u >"$dir/exported"
# Data objects may have a copy in the program, so that not only undefined names count.
nm -D "$1" | awk '{ sub(/@.*/, "", $NF); print $NF }' | sort -u | comm -12 - "$dir/exported" >"$dir/used"
used=$(wc -l <"$dir/used")
told=$(tr '\n' ' ' <"$3" | sed -n 's/.* gets by with \([0-9][0-9]*\)\..*/\1/p')
[ "$told" = "$used" ] && exit 0
echo "$3 says '$told' names; $1 uses $used:"
cat "$dir/used"
exit 1
