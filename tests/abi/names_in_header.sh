#!/bin/sh
# names_in_header.sh LIST HEADER... - every exported name is declared in a public header.
set -eu
list=$1
shift
# A declaration has the name outside a comment, followed by ( [ ] ; or ).
cat "$@" | grep -vE '^[[:space:]]*(/?\*|//)' |
    grep -oE '[A-Za-z_][A-Za-z0-9_]*[[:space:]]*[][(;)]' |
    awk -v list="$list" '
        { sub(/[^A-Za-z0-9_].*/, ""); declared[$0] = 1 }
        END {
            while ((getline name < list) > 0) {
                sub(/#.*/, "", name)
                gsub(/[[:space:]]/, "", name)
                if (name == "") continue
                ++listed
                if (name in declared) continue
                print "not declared: " name
                ++missing
            }
            if (!listed) print "no names in " list
            exit missing || !listed
        }'
