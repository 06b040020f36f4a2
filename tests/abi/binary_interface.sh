#!/bin/bash
# binary_interface.sh DESCRIPTION LIBRARY HEADERS...
#     the library's binary interface still has everything that the description has, unchanged: its SONAME,
#     functions with parameters and results, data objects, and the records that these reach. What was
#     added is told and accepted.
# binary_interface.sh --renew DESCRIPTION LIBRARY HEADERS...
#     writes the description from the library
#
# The description is libabigail's (abidw), made of the library's debug information. HEADERS are the
# directories whose types belong to the interface; all others are the library's own affair.
set -euo pipefail

renew=no
if [ "${1:-}" = --renew ]; then
    renew=yes
    shift
fi
[ $# -ge 3 ] || { echo "usage: $0 [--renew] DESCRIPTION LIBRARY HEADERS..." >&2; exit 2; }
description=$1
library=$2
shift 2

command -v abidw >/dev/null && command -v abidiff >/dev/null || { echo "abidw is missing: abigail-tools"; exit 77; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

headers=()
for directory in "$@"; do
    headers+=(--headers-dir "$directory")
done

# Without places in the sources, so that the description changes only when the interface does.
abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed --type-id-style hash \
    --exported-interfaces-only --drop-private-types "${headers[@]}" --out-file "$scratch/now.abi" "$library"
sources=$(cd "$(dirname "$0")/../.." && pwd)
sed -i "s, path='$sources/, path='," "$scratch/now.abi"
grep -q '<function-decl ' "$scratch/now.abi" || { echo "$library has no debug information"; exit 1; }

if [ $renew = yes ]; then
    mv "$scratch/now.abi" "$description"
    chmod 644 "$description"
    echo "$description: written"
    exit 0
fi

if ! abidiff --no-added-syms "$description" "$scratch/now.abi" >"$scratch/report"; then
    cat "$scratch/report"
    echo "The binary interface of $library is not what $description promises."
    exit 1
fi
if ! abidiff --added-fns --added-vars "$description" "$scratch/now.abi" >"$scratch/report"; then
    grep -F '[A]' "$scratch/report"
    echo "This was added to the interface. Renew $description, so that it is kept as well."
fi
echo "the binary interface is what it was"
