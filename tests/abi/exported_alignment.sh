#!/bin/bash
# exported_alignment.sh LIBRARY HEADER...: every exported array of 16 bytes or more stands on a multiple
# of 16. Compilers for amd64 take that for granted of arrays that they do not see the definition of.
set -euo pipefail
library=$1
shift
arrays=$(sed -n 's/^extern NVRHAL_API [^(]*[ *]\([A-Za-z_0-9]*\)\[.*;.*/\1/p' "$@")
readelf --wide --dyn-syms --sym-base=10 "$library" | awk -v arrays="$arrays" '
    BEGIN { split(arrays, names); for (i in names) array[names[i]] }
    $4 == "OBJECT" && $3 >= 16 && $8 in array {
        seen++
        if (substr($2, length($2)) != "0") { print $8 " is at 0x" $2; unaligned++ }
    }
    END {
        print seen + 0 " arrays, " unaligned + 0 " not aligned"
        exit !seen || unaligned
    }'
