#!/bin/bash
# Every function that the seams' headers declare is defined in a library, and nothing else of their names.
#
#   covers_the_seams.sh COMPILER NM LIBRARY HEADERS
set -euo pipefail
compiler=$1 nm=$2 library=$3 headers=$4

declared=$(for header in "$headers"/mi_*.h "$headers"/board_io.h; do
    "$compiler" -E -P -I"$headers" "$header" # without comments
done | grep -oE '\b(MI_[A-Z]+_[A-Za-z]+|board_[a-z_]+) ?\(' | tr -d ' (' | sort -u)
defined=$("$nm" "$library" | sed -nE 's/^[0-9a-f]+ [TW] ((MI_|board_).*)$/\1/p' | grep -v '^board_unsupported$' | sort)

[ "$(wc -l <<<"$declared")" -ge 80 ] || { echo "only $(wc -l <<<"$declared") declarations found"; exit 1; }
diff <(echo "$declared") <(echo "$defined") || { echo "< declared, > defined"; exit 1; }
echo "$(wc -l <<<"$declared") functions"
