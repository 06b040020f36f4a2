#!/bin/bash
# reference_is_whole.sh DIRECTORY - the reference that was made there has every name that the two libraries
# export, and an application's main page; and making it fails when something is not described.
set -uo pipefail
cd "$(dirname "$0")/../.." || exit 1
made=$(realpath "$1")
bad=0

# Names of the descriptions of the binary interfaces that Doxygen has no entry for.
missing_in() {
    comm -23 <(sed -n "s/.*<elf-symbol name='\([^']*\)'.*/\1/p" tests/abi/lib*.abi | sort -u) \
        <(sed -n 's,.*<name>\(.*\)</name>.*,\1,p' "$1" | sort -u)
}

missing=$(missing_in "$made/names.tag")
[ -z "$missing" ] || { echo "not in the reference: $missing"; bad=$((bad + 1)); }
for page in index group__nvrhal group__seam group__vboard; do
    [ -s "$made/html/$page.html" ] || { echo "there is no $page.html"; bad=$((bad + 1)); }
done
grep -q 'href="group__nvrhal__live.html#[^>]*>ext_send_stream' "$made/html/group__nvrhal.html" ||
    { echo "the library's page does not lead to ext_send_stream"; bad=$((bad + 1)); }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
sed '/<name>ext_device_init</d' "$made/names.tag" >"$scratch/names.tag"
[ "$(missing_in "$scratch/names.tag")" = ext_device_init ] || { echo "a missing name is not noticed"; bad=$((bad + 1)); }

# The same over headers of which one has lost the comments of its functions, one those of parameters, and one
# that of a field.
mkdir -p "$scratch/platform/virtual" "$scratch/out"
cp -r include "$scratch/include"
cp -r platform/include "$scratch/platform/include"
cp -r platform/virtual/include "$scratch/platform/virtual/include"
sed -i '/^\/\*\*$/,/^ \*\/$/d' "$scratch/include/nvrhal/playback.h"
sed -i '/@param channel/d' "$scratch/include/nvrhal/pool.h"
sed -i 's,^\(    uint8_t \*bytes;\).*,\1,' "$scratch/platform/virtual/include/vboard.h"
sed -e "s,$PWD/include,$scratch/include,g; s,$PWD/platform/,$scratch/platform/,g" \
    -e "s,$made,$scratch/out,g; s,^WARN_AS_ERROR.*,WARN_AS_ERROR = FAIL_ON_WARNINGS," "$made/Doxyfile" >"$scratch/Doxyfile"
doxygen "$scratch/Doxyfile" >"$scratch/told" 2>&1 && { echo "headers with gaps are accepted"; bad=$((bad + 1)); }
for gap in 'ext_playback_start.*is not documented' 'pool.h.*parameter' 'bytes.*is not documented'; do
    grep -qE "$gap" "$scratch/told" || { echo "a gap is not noticed: $gap"; bad=$((bad + 1)); }
done
echo "$(grep -c '<name>' "$made/names.tag") names, $bad complaints"
exit $((bad > 0))
