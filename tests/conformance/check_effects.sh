#!/bin/sh
# Shows that every mutant takes effect: what it breaks holds on the board in software without it, and does
# not hold with it.
#
#   check_effects.sh PROGRAM MUTANT_DIR [--each]
#
# PROGRAM is mutant-effects, MUTANT_DIR where the mutants were built. With --each every observation is made
# under every mutant (a quarter of an hour), and what a mutant breaks besides its own is listed.
# Exit status: 0 = every mutant listed in mutants.txt is effective, and every one is listed.
set -u
program=$1
mutants=$2
each=${3:-}
list=$(dirname "$0")/mutants/mutants.txt
failed=0

# observe NAME MUTANT: kept, broken, or nothing when the observation could not be made.
observe() {
    LD_PRELOAD=$2 timeout 60 "$program" "$1" 2>/dev/null
}

names=$(sed -n 's/^\([a-z][a-z0-9_]*\) *|.*/\1/p' "$list" | sort)
built=$(for file in "$mutants"/*.so; do basename "$file" .so; done | sort)
if [ "$names" != "$built" ]; then
    echo "mutants.txt and the libraries in $mutants differ"
    failed=1
fi
for name in $names; do
    without=$(observe "$name" "")
    with=$(observe "$name" "$mutants/$name.so")
    if [ "$without" = kept ] && [ "$with" = broken ]; then continue; fi
    echo "$name: ${without:-not tried} without it, ${with:-not tried} with it"
    failed=1
done
echo "$(echo "$names" | wc -l) mutants"

if [ "$each" = --each ]; then
    for name in $names; do
        for other in $names; do
            [ "$name" = "$other" ] && continue
            answer=$(observe "$other" "$mutants/$name.so")
            [ "$answer" = kept ] || echo "$name: also $other (${answer:-not tried})"
        done
    done
fi
exit $failed
