#!/bin/bash
# alone.sh SUITE_DIRECTORY SEAM_HEADERS LIBRARY: the folder by itself, with the plain makefile and without hooks, gives
# a program that holds what needs no hook and says what it could not try.
set -eu
suite=$1
headers=$2
library=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp "$suite"/*.c "$suite"/*.h "$suite"/Makefile "$scratch"
for source in "$scratch"/*.c; do # compilers that know nothing but the standard, vboard_hooks.c is ours
    [[ $source == *_hooks.c ]] || cc -std=c11 -Wall -Wextra -Werror -fsyntax-only -I"$scratch" -I"$headers" "$source"
done
make -s -C "$scratch" CFLAGS='-O0 -Wall -Wextra -Werror' INCLUDE="$headers" BOARD="$library" \
    LDFLAGS="-Wl,-rpath,$(dirname "$library")"
"$scratch/nvrhal-conformance" --only 'sys.pts*' >"$scratch/held" 2>/dev/null
grep -q '^held  *sys.pts.runs' "$scratch/held"
"$scratch/nvrhal-conformance" --only 'hdmi.callback.*' >"$scratch/untried" 2>/dev/null
grep -q '^not tried  *hdmi.callback.plug' "$scratch/untried"
! grep -q '^held\|^broken' "$scratch/untried"
grep -q 'board without hooks' "$scratch/untried"
# The person is asked, and believed.
echo n | "$scratch/nvrhal-conformance" --ask --only disp.enable.background-black >"$scratch/asked" 2>/dev/null && exit 1
grep -q 'broken  *disp.enable.background-black' "$scratch/asked"
echo y | "$scratch/nvrhal-conformance" --ask --only disp.enable.background-black >"$scratch/asked" 2>/dev/null
grep -q 'held  *disp.enable.background-black' "$scratch/asked"
