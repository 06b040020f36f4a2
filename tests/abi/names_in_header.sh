#!/bin/sh
# names_in_header.sh LIST HEADER - every exported name is declared in the public header.
set -eu
status=0
for name in $(sed 's/#.*//; s/[[:space:]]//g' "$1"); do
    # A declaration has the name outside a comment, followed by ( [ ; or ).
    if ! grep -vE '^[[:space:]]*(/?\*|//)' "$2" | grep -qE "(^|[^A-Za-z0-9_])$name[[:space:]]*[][(;)]"; then
        echo "not declared: $name"
        status=1
    fi
done
exit $status
