#!/bin/bash
# usage.sh PROGRAM: wrong usage gives 2, a report that cannot be written 3, a single point 0.
set -u
program=$1
failed=0
expect() {
    local wanted=$1
    shift
    "$program" "$@" >/dev/null 2>&1
    local status=$?
    if [ $status -ne "$wanted" ]; then
        echo "$* gave $status, expected $wanted"
        failed=1
    fi
}
expect 2 --no-such-option
expect 2 --only 'nothing.*'
expect 2 --soak none
expect 2 --patience 0
expect 2 --json
expect 2 stray
expect 3 --only vdec.create.null --json /nowhere/at/all.json
expect 3 --only vdec.create.null --json /dev/full
[ -z "$("$program" --only vdec.create.null --json /nowhere/at/all.json 2>/dev/null)" ] || {
    echo "a report that cannot be written is noticed only after the run"
    failed=1
}
for table in "--list" "--only vdec.create.null"; do
    "$program" $table >/dev/full 2>/dev/null
    [ $? -eq 3 ] || { echo "$table into a full disk did not give 3"; failed=1; }
done
expect 0 --only vdec.create.null
expect 0 --list
[ "$("$program" --list --only 'vdec.send.*' | grep -cv '^vdec\.send\.')" = 0 ] || failed=1
"$program" --only vdec.create.null --verbose | grep -q 'MI_VDEC_CreateChn(1, null) = NULL_POINTER of VDEC' || {
    echo "--verbose does not print the calls"
    failed=1
}
exit $failed
