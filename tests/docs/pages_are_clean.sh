#!/bin/bash
# pages_are_clean.sh DIRECTORY - neither of the two formatters that systems have complains about a manual page,
# and nothing of how pages are made is left in them.
set -uo pipefail
command -v mandoc >/dev/null && command -v man >/dev/null || { echo "mandoc or man is missing"; exit 77; }
export LC_ALL=C.UTF-8 MANWIDTH=80 MANROFFSEQ=

complaints() {
    mandoc -T lint -W warning "$1" 2>&1
    man --warnings -E UTF-8 -l -Tutf8 -Z "$1" 2>&1 >/dev/null
    grep -nE '^@|@[A-Z]+@' "$1"
}

bad=0
count=0
for page in "$1"/*.[17]; do
    count=$((count + 1))
    told=$(complaints "$page")
    [ -z "$told" ] || { echo "$page: $told"; bad=$((bad + 1)); }
done
[ $count -ge 1 ] || { echo "no pages in $1"; exit 1; }

broken=$(mktemp)
trap 'rm -f "$broken"' EXIT
for line in '.Bl -tag' '.nonsense' '@options *'; do
    { cat "$page" && echo "$line"; } >"$broken"
    [ -n "$(complaints "$broken")" ] || { echo "'$line' is not noticed"; bad=$((bad + 1)); }
done
echo "$count pages, $bad complaints"
exit $((bad > 0))
