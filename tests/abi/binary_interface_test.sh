#!/bin/bash
# binary_interface_test.sh [DESCRIPTION LIBRARY HEADERS...] - binary_interface.sh finds what breaks programs, and
# takes what does not.
#
# First over small libraries, each of which differs in one point from the one that was described. Then over
# the real library, held against descriptions that promise a little more than it has.
set -uo pipefail
check=$(dirname "$0")/binary_interface.sh
command -v abidw >/dev/null || { echo "abidw is missing: abigail-tools"; exit 77; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
bad=0

complain() {
    echo "$*"
    bad=$((bad + 1))
}

mkdir "$scratch/include"
cat >"$scratch/include/sample.h" <<'END'
#include <stdint.h>
enum Corner { CORNER_LEFT = 0, CORNER_RIGHT = 1 };
typedef struct Pane {
    uint32_t channel;
    uint16_t x, y;
    uint16_t w, h;
    enum Corner corner;
} Pane;
extern int32_t shown_channels;
extern uint16_t zoom_channel;
int32_t show(const Pane *pane, uint32_t count);
int32_t hide(uint32_t channel);
END
cat >"$scratch/sample.c" <<'END'
#include "sample.h"
typedef struct Inner { int a; } Inner;
static Inner inner;
int32_t shown_channels = 1;
uint16_t zoom_channel = 2;
int32_t show(const Pane *pane, uint32_t count) { return pane->x + (int32_t)count + inner.a; }
int32_t hide(uint32_t channel) { return (int32_t)channel; }
END

# compile [SED_SCRIPT]: the small library, changed in header and source alike.
compile() {
    rm -rf "$scratch/changed"
    mkdir -p "$scratch/changed/include"
    sed -E "${1:-}" "$scratch/include/sample.h" >"$scratch/changed/include/sample.h"
    sed -E "${1:-}" "$scratch/sample.c" >"$scratch/changed/sample.c"
    gcc ${flags:--g} -shared -fPIC -Wl,-soname,"${soname:-libsample.so.1}" -I"$scratch/changed/include" \
        -o "$scratch/changed/libsample.so" "$scratch/changed/sample.c"
}

# judged VERDICT WHAT [SED_SCRIPT]: kept or broken.
judged() {
    local verdict=kept
    compile "${3:-}" || { complain "$2: does not compile"; return; }
    if [ -n "${3:-}" ] && diff -r -x '*.so' "$scratch/changed" "$scratch/described" >/dev/null; then
        complain "$2: nothing was changed"
    fi
    "$check" "$scratch/sample.abi" "$scratch/changed/libsample.so" "$scratch/changed/include" >"$scratch/told" 2>&1 ||
        verdict=broken
    [ $verdict = "$1" ] || { complain "$2: $verdict, expected $1"; cat "$scratch/told"; }
}

compile
"$check" --renew "$scratch/sample.abi" "$scratch/changed/libsample.so" "$scratch/include" || exit 1
cp -r "$scratch/changed" "$scratch/described"

judged kept "nothing changed"
judged kept "a type of the library's own" 's/struct Inner \{ int a;/struct Inner { int b, a;/'
judged kept "a function more" 's/^int32_t hide\(uint32_t channel\)(.*)/&\nint32_t swap(void)\1/; s/(swap.*)channel;/\10;/'
grep -q swap "$scratch/told" || complain "the function that was added is not told"
judged kept "an object more" 's/^(extern )?uint16_t zoom_channel.*/&\n\1uint16_t zoom_level;/'
grep -q zoom_level "$scratch/told" || complain "the object that was added is not told"

judged broken "a function removed" '/^int32_t hide/d'
judged broken "a function renamed" 's/^int32_t hide/int32_t hide_channel/'
judged broken "an object removed" '/uint16_t zoom_channel/d'
judged broken "another type of result" 's/^int32_t hide/int64_t hide/'
judged broken "another type of parameter" 's/(hide\()uint32_t/\1uint16_t/'
judged broken "a parameter more" 's/(hide\(uint32_t channel)/\1, uint32_t device/'
judged broken "another type of object" 's/uint16_t zoom_channel/uint32_t zoom_channel/'
judged broken "a field in front" 's/^    uint32_t channel;/    uint32_t device;\n&/'
judged broken "a field at the end" 's/^    enum Corner corner;/&\n    uint32_t device;/'
judged broken "a wider field" 's/^    uint16_t w, h;/    uint32_t w, h;/'
judged broken "a field taken away" 's/^    uint16_t w, h;/    uint16_t w;/'
judged broken "two fields changed about" 's/^    uint16_t x, y;/    uint16_t y, x;/'
judged broken "another number of an enumeration" 's/CORNER_RIGHT = 1/CORNER_RIGHT = 2/'
soname=libsample.so.2 judged broken "another SONAME"
flags=-g0 judged broken "no debug information"

[ $# -ge 3 ] || { echo "$bad not judged rightly"; exit $((bad > 0)); }
description=$1
library=$2
shift 2

# promised WHAT SED_SCRIPT: the description says what the library does not have.
promised() {
    sed "$2" "$description" >"$scratch/promised.abi"
    cmp -s "$description" "$scratch/promised.abi" && complain "$1: nothing was changed"
    "$check" "$scratch/promised.abi" "$library" "${headers[@]}" >"$scratch/told" 2>&1 && complain "$1: is not found"
}
headers=("$@")

promised "a function that the library lost" "s/'ext_device_init'/'ext_device_begin'/"
promised "an object that the library lost" "s/'cur_snap_chnn'/'cur_snap_channel'/"
promised "a record that became smaller" "/class-decl name='DispAttrib'/s/'128'/'160'/"
promised "a field that moved" "/class-decl name='DispAttrib'/,/\/class-decl/s/in-bits='48'/in-bits='56'/"
promised "a SONAME that changed" "/<abi-corpus/s/soname='[^']*'/soname='libother.so.1'/"

echo "$bad not judged rightly"
exit $((bad > 0))
