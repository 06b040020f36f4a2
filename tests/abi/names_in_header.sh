#!/bin/sh
# names_in_header.sh LIST HEADER... - every exported name is declared in a public header.
set -eu
list=$1
shift
status=0
for name in $(sed 's/#.*//; s/[[:space:]]//g' "$list"); do
    # A declaration has the name outside a comment, followed by ( [ ; or ).
    if ! cat "$@" | grep -vE '^[[:space:]]*(/?\*|//)' | grep -qE "(^|[^A-Za-z0-9_])$name[[:space:]]*[][(;)]"; then
        echo "not declared: $name"
        status=1
    fi
done
exit $status
