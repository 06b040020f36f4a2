#!/bin/sh
# header_compiles.sh C_COMPILER CXX_COMPILER INCLUDE_DIRECTORY SEAMS_DIRECTORY
#
# The public header, and each header in nvrhal/ by itself, compiles without a warning in every
# language that applications are written in, and so does each header of the seams in those of
# platforms; and whoever calls an operation that takes anything may hand over anything, or nothing.
# Exit status 77: the compiler is not installed.
set -eu
c=$1
cxx=$2
include=$3
seams=$4
command -v "$c" >/dev/null && command -v "$cxx" >/dev/null || { echo "skipped: $c or $cxx is not installed"; exit 77; }
warnings='-Wall -Wextra -Wpedantic -Wstrict-prototypes -Werror'
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
status=0

compiles() { # what is compiled, compiler and arguments
    what=$1
    shift
    if ! "$@" $warnings -I "$include" -I "$seams" -fsyntax-only >"$dir/log" 2>&1; then
        echo "$what with $1:"
        head -n 20 "$dir/log"
        status=1
    fi
}

# The warnings are really on: an empty list is refused where the header does not excuse it.
echo 'int unexcused();' >"$dir/empty_list.c"
if "$c" -std=c11 $warnings -fsyntax-only "$dir/empty_list.c" 2>/dev/null; then
    echo "$c does not warn of an empty list"
    exit 1
fi

# A program that calls every operation of accepted.h with nothing, with little and with more than it could use.
names=$(sed -n 's/^NVRHAL_API [a-z]* \([A-Za-z0-9_]*\)(NVRHAL_ANYTHING);$/\1/p' "$include/nvrhal/accepted.h")
[ "$(echo "$names" | wc -l)" -ge 70 ] || { echo "accepted.h: fewer operations than there are"; exit 1; }
{
    echo '#include "nvrhal.h"'
    echo 'void call_everything(int number, double fraction, const char *text);'
    echo 'void call_everything(int number, double fraction, const char *text) {'
    for name in $names; do
        echo "$name(); $name(number); $name(text, fraction, number, &number);"
    done
    echo '}'
} >"$dir/calls.c"
cp "$dir/calls.c" "$dir/calls.cpp"

# The excuse ends with accepted.h.
printf '#include "nvrhal.h"\nint unexcused();\n' >"$dir/after.c"
if "$c" -std=c11 $warnings -I "$include" -fsyntax-only "$dir/after.c" 2>/dev/null; then
    echo "nvrhal.h leaves the warning of $c off"
    exit 1
fi

# A source for every header, with nothing else in it.
for header in nvrhal.h $(cd "$include" && ls nvrhal/*.h) $(cd "$seams" && ls *.h); do
    alone=$dir/alone_$(basename "$header" .h)
    printf '#include "%s"\n' "$header" | tee "$alone.c" >"$alone.cpp"
done

for standard in c11 c17 c2x; do
    compiles "$standard: calls with any arguments" "$c" -std=$standard "$dir/calls.c"
    compiles "$standard: each header alone" "$c" -std=$standard "$dir"/alone_*.c
done
compiles "c++20: calls with any arguments" "$cxx" -std=c++20 "$dir/calls.cpp"
compiles "c++20: each header alone" "$cxx" -std=c++20 "$dir"/alone_*.cpp
exit $status
