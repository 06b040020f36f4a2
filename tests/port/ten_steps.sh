#!/bin/bash
# The port of docs/porting.md, step by step on the made-up chip: from a copy of the skeleton each step brings
# sources of the adapter in, and its points of the conformance suite go green.
#
#   ten_steps.sh WORK_FOLDER
#
# Prints, for each step, how many of its points held before it and hold after it.
set -euo pipefail
cd "$(dirname "$0")/../.."

work=$1
mkdir -p "$work"
adapter=examples/port/adapter tern=examples/port/tern
flags=(-std=gnu11 -O1 -Iplatform/include -Iplatform/linux -I$tern -I$adapter -Iconformance)
hooks=$adapter/tern_hooks.c

compile() { # object, source
    ${CC:-cc} "${flags[@]}" -c "$2" -o "$1"
}

# What does not change from step to step: the suite, the chip, the system's own board I/O.
fixed=()
for source in conformance/*.c $hooks $tern/*.c platform/linux/board_linux.c; do
    [[ $source == conformance/*_hooks.c ]] && continue
    object=$work/fixed-${source//\//-}.o
    compile "$object" "$source"
    fixed+=("$object")
done
rm -f "$work/libdefaults.a"
for source in platform/linux/defaults/*.c; do
    compile "$work/default-$(basename "$source").o" "$source"
done
${AR:-ar} rc "$work/libdefaults.a" "$work"/default-*.o

# The porter's sources as they stand now, by name; at first the skeleton's.
declare -A stands=()
for source in platform/skeleton/*.c; do
    stands[$(basename "$source")]=$source
done

link() { # program
    local objects=() name
    for name in "${!stands[@]}"; do
        compile "$work/now-$name.o" "${stands[$name]}"
        objects+=("$work/now-$name.o")
    done
    compile "$work/not-yet.o" tests/port/not_yet.c
    ${CC:-cc} "${fixed[@]}" "${objects[@]}" "$work/not-yet.o" "$work/libdefaults.a" -lpthread -lm -o "$1"
}

# How many points of these patterns hold, are broken, were not tried: three numbers.
count() { # program, patterns...
    local program=$1 held=0 broken=0 rest=0 pattern line
    shift
    for pattern in "$@"; do
        while read -r line; do
            case $line in
            held*) held=$((held + 1)) ;;
            broken*) broken=$((broken + 1)) ;;
            "not tried"*) rest=$((rest + 1)) ;;
            esac
        done < <("$program" --only "$pattern" 2>/dev/null | grep -E '^(held|broken|not tried) +[a-z]')
    done
    echo "$held $broken $rest"
}

failures=0
number=0
step() { # sources that come, with commas; those that go; patterns...
    local come=$1 go=$2 name before after
    shift 2
    number=$((number + 1))
    before=$(count "$work/program" "$@")
    for name in ${go//,/ }; do unset "stands[$name]"; done
    for name in ${come//,/ }; do stands[$name]=$adapter/$name; done
    link "$work/program"
    after=$(count "$work/program" "$@")
    printf 'step %2d: before %s, after %s (held, broken, not tried): %s\n' $number "$before" "$after" "$*"
    [ "${after%% *}" -gt "${before%% *}" ] || { echo "step $number turned no point green"; failures=1; }
}

link "$work/program"
step "" board.c 'board.time.*' 'board.sleep.*' 'board.command.*'
step sys.c "" 'sys.init.*' 'sys.version.*' 'sys.pts*'
step disp.c,timing.c "" 'disp.*layer*' 'disp.*pub-attr.*'
step disp_port.c "" 'disp.port*' 'disp.*port.*' 'disp.sync-mode.*' 'disp.zoom.*'
step hdmi.c "" 'hdmi.*'
step vdec.c "" 'vdec.*'
step bind.c "" 'sys.*'
step ao.c "" 'ao.*'
step divp.c,venc.c,grab.c unsupported.c 'divp.*' 'venc.*'
step board.c,node_fb.c,node_inputs.c,node_small.c "" \
    'board.*' 'fb.*' 'watchdog.*' 'rtc.*' 'gpio.*' 'panel.*' 'ir.*' 'mouse.*' 'analog.*'

# Nothing is left of the skeleton, and nothing is broken.
for name in "${!stands[@]}"; do
    [[ ${stands[$name]} == "$adapter"/* ]] || { echo "$name is still the skeleton's"; failures=1; }
done
all=$(count "$work/program" '*')
echo "whole suite: $all (held, broken, not tried)"
read -r _ broken _ <<<"$all"
[ "$broken" -eq 0 ] || failures=1
exit $failures
