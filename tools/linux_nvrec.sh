#!/bin/bash
# Build the recorder as for a real board, on an adapter that refuses every call, and see that it speaks
# and ends as it should where there is no chip.
#
#   tools/linux_nvrec.sh [JOBS]
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset linux-nvrec
cmake --build --preset linux-nvrec -j "${1:-$(nproc)}" --target nvrec
nvrec=build/linux-nvrec/bin/nvrec
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() { echo "linux_nvrec: $1" >&2; exit 1; }

# expect STATUS TEXT ARGUMENTS...: how it ends, and what it says then.
expect() {
    local status=$1 text=$2 found=0
    shift 2
    timeout 30 "$nvrec" "$@" >"$scratch/said" 2>&1 || found=$?
    [ $found -eq "$status" ] || { cat "$scratch/said"; fail "nvrec $*: exit status $found, not $status"; }
    grep -qF -- "$text" "$scratch/said" || { cat "$scratch/said"; fail "nvrec $*: it does not say: $text"; }
}

expect 0 "Show 1 to 16 cameras" --help
expect 4 "the library did not start" board --control "$scratch/none" --log "$scratch/log"
grep -q "skeleton: MI_SYS_Init: unsupported" "$scratch/log" || fail "the log does not say why"
expect 3 "no input could be opened" wall "$scratch/absent.mp4" --log "$scratch/log" --control none
[ -z "$(ldd "$nvrec" | grep vboard)" ] || fail "it needs the board in software"
tools/check_seams.sh build/linux-nvrec
echo "linux_nvrec: built, speaks, and ends as it should without a chip"
