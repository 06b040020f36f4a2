#!/bin/bash
# Prove that dependencies run one way: apps -> include -> src -> platform/include <- platform/*.
#
#   tools/check_seams.sh [BUILD_DIRECTORY]
#
# Reads the sources; with a build directory also the library's object files, which cannot hide a
# call behind a macro.
set -uo pipefail
cd "$(dirname "$0")/.."

build=${1:-}
violations=0
violation() {
    echo "seam: $1" >&2
    violations=$((violations + 1))
}

sources() { find "$@" -type f \( -name '*.h' -o -name '*.c' -o -name '*.cpp' \) | sort; }

# Source text without comments and string literals.
bare_code() { g++ -fpreprocessed -dD -E -P -x c++ "$1" 2>/dev/null | sed -E 's/"([^"\\]|\\.)*"/""/g'; }

# 1. Codecs, scalers and windows are the host side's alone; the recorder may demux, and decode the
#    cameras' sound to what the library takes.
media='libav[a-z]*/|libsw[a-z]*/|libyuv|turbojpeg|jpeglib|SDL'
while read -r file; do
    grep -nE "^[[:space:]]*#[[:space:]]*include[[:space:]]*[<\"]($media)" "$file" >/dev/null &&
        violation "$file includes a media library; only platform/virtual/host may"
done < <(sources src include platform | grep -v '^platform/virtual/host/')
while read -r file; do
    grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"](libswscale/|libyuv|turbojpeg|jpeglib|SDL)' "$file" >/dev/null &&
        violation "$file includes a media library beyond libavformat, libavcodec and libswresample"
    grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"(mi_|board_io)' "$file" >/dev/null &&
        [[ $file != apps/nvrec/host/* && $file != apps/vboard/* ]] &&
        violation "$file reaches below the library"
done < <(sources apps)

# JSON is for the board's remote face and the recorder's status, and HTTP for the programs that serve it.
while read -r file; do
    grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"]nlohmann/' "$file" >/dev/null &&
        [[ $file != platform/virtual/remote/* && $file != apps/vboard/* && $file != apps/nvrec/controls/status_json.cpp ]] &&
        violation "$file includes JSON; only platform/virtual/remote, apps/vboard and the recorder's status may"
    grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"](libwebsockets|curl/)' "$file" >/dev/null &&
        [[ $file != apps/vboard/* ]] &&
        violation "$file includes HTTP; only apps/vboard may"
    grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"]microhttpd' "$file" >/dev/null &&
        [[ $file != apps/nvrec/controls/status_page.cpp ]] &&
        violation "$file includes HTTP; only the recorder's status page may"
done < <(sources src include platform apps)

# The recorder knows what stands under the library, and the machine's clocks, in its host room alone.
clocks='steady_clock|system_clock::now|clock_gettime|gettimeofday|[^_[:alnum:]]time\((nullptr|NULL|0)\)'
clocks+='|sleep_for|sleep_until|[^_[:alnum:]](usleep|nanosleep|sleep)\(|condition_variable|std::future'
while read -r file; do
    grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"(vboard|[a-z]+_driver|ir_buttons|panel_keys)' "$file" &&
        violation "$file includes a header of what stands under the library; only apps/nvrec/host may"
    bare_code "$file" | grep -nE "$clocks" &&
        violation "$file reads a clock or waits on one by itself; apps/nvrec/host/clock.h does"
done < <(sources apps/nvrec | grep -v '^apps/nvrec/host/')

# 2. The library includes its own headers, include/ and platform/include/, and of the system only
#    what a target without the C++ run-time library has.
while read -r file; do
    while read -r name; do
        [ -e "$(dirname "$file")/$name" ] || [ -e "src/$name" ] || [ -e "include/$name" ] ||
            [ -e "platform/include/$name" ] || violation "$file includes \"$name\", which is not its own, include/ or platform/include/"
    done < <(sed -nE 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"([^"]+)".*/\1/p' "$file")
    grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*<(iostream|fstream|sstream|string|vector|map|thread|mutex|chrono|filesystem|functional|memory|condition_variable|sys/ioctl\.h|sys/mman\.h|sys/time\.h)>' "$file" &&
        violation "$file includes a header of what the library must not use"
    grep -nE '^[[:space:]]*#[[:space:]]*(if|ifdef|ifndef|elif).*(VIRTUAL|VBOARD|PLATFORM|RECORDING|__linux|__arm|__aarch64|__x86|__i386)' "$file" &&
        violation "$file asks which platform it runs on"
    # 3. The operating system is reached through board_io alone.
    bare_code "$file" | grep -nE '(^|[^_[:alnum:].>])(usleep|nanosleep|sleep|system|gettimeofday|clock_gettime|open|ioctl|mmap|munmap|popen|fork)[[:space:]]*\(' &&
        violation "$file calls the operating system behind board_io.h"
done < <(sources src)

# 4. Between the rooms of the library, and between those of the recorder, dependencies run one way, too:
#    a room uses itself and the rooms that stand here behind it. Start-up and the command line use all
#    others, and none uses them.
declare -A uses=(
    [start]="core view stream snap audio gui text input board frontend"
    [view]="core audio gui frontend"
    [board]="core input"
    [stream]=core [snap]=core [audio]=core [gui]=core [text]=core [input]=core [frontend]=core
    [core]=
)
declare -A nvrec_uses=(
    [commands]="config controls play record screen wall camera archive console host"
    [config]="screen wall camera console"
    [play]="screen wall camera archive console host"
    [screen]="wall camera archive console host"
    [record]="wall camera archive console host"
    [controls]="wall camera console host"
    [wall]="camera console host"
    [camera]="console host"
    [archive]=host [console]=host
    [host]=
)
may_use() { # TABLE ROOM ROOM
    local -n stated=$1
    [ "$2" = "$3" ] || [[ " ${stated[$2]-} " == *" $3 "* ]]
}
check_rooms() { # DIRECTORY TABLE
    local -n rooms=$2
    local room used file include
    while read -r room; do
        [ -n "${rooms[$room]+known}" ] || violation "$1/$room is a room whose dependencies are not stated"
    done < <(sources "$1" | sed "s|^$1/||; s|/[^/]*$||" | sort -u)
    while IFS=: read -r file include; do
        file=${file#"$1/"}
        room=${file%%/*}
        used=$(sed -E 's/.*["<](\.\.\/)*([a-z]+)\/.*/\2/' <<<"$include")
        may_use "$2" "$room" "$used" || violation "$1/$file reaches up into $1/$used"
    done < <(grep -rE '^[[:space:]]*#[[:space:]]*include[[:space:]]*["<](\.\./)*('"$(tr ' ' '|' <<<"${!rooms[*]}")"')/' "$1")
    for room in "${!rooms[@]}"; do
        for used in ${rooms[$room]}; do echo "$room $used"; done
    done | tsort >/dev/null 2>&1 || violation "the table of $1 leads round in a circle"
}
check_rooms src uses
check_rooms apps/nvrec nvrec_uses

if [ -n "$build" ]; then
    [ -d "$build/src" ] || violation "$build holds no build of the library"
    # An object whose source was moved or removed stays in the build directory: it is no part of the library.
    objects=$(find "$build/src" -path '*nvrhal_objects.dir/*' -name '*.o' |
        while read -r object; do
            source=${object##*nvrhal_objects.dir/}
            [ -e "src/${source%.o}" ] && echo "$object"
        done)
    [ -n "$objects" ] || violation "$build holds no object of the library"
    while read -r symbol; do
        violation "an object of the library calls $symbol"
    done < <(nm -u $objects /dev/null 2>/dev/null |
        awk '$1 == "U" { print $2 }' | sort -u |
        grep -E '^(usleep|nanosleep|sleep|system|gettimeofday|clock_gettime|open|open64|ioctl|mmap|mmap64|munmap|read|close|popen|fork|poll|select)(@.*)?$')
    while read -r symbol; do
        violation "an object of the library needs the C++ run-time library: $symbol"
    done < <(nm -u $objects 2>/dev/null | awk '$1 == "U" { print $2 }' | sort -u | grep -E '^(_ZSt|_ZNSt|_ZNKSt|_Zn[wa]|_Zd[la]|__cxa_|__gxx|_ZTV)')
    # What one room's objects define and another's want, exported functions and data included.
    rooms_symbols() { # KINDS: symbol and room, a line each
        nm -A $objects 2>/dev/null | awk -v kinds="$1" '$(NF - 1) ~ kinds {
            match($0, /nvrhal_objects\.dir\/[a-z]+\//)
            print $NF, substr($0, RSTART + 19, RLENGTH - 20)
        }' | sort -u
    }
    while read -r symbol defined wanted; do
        may_use uses "$wanted" "$defined" || violation "src/$wanted reaches up into src/$defined for $symbol"
    done < <(join <(rooms_symbols '^[TDBRC]$') <(rooms_symbols '^U$'))
fi

# A recorder that was built beside the library needs nothing of the board by name.
if [ -n "$build" ] && [ -d "$build/apps/nvrec" ]; then
    pieces="$build/apps/nvrec/libnvrec_pieces.a $(find "$build/apps/nvrec/CMakeFiles/nvrec.dir" -name '*.o')"
    [ -f "${pieces%% *}" ] || violation "$build holds no object of the recorder"
    while read -r symbol; do
        violation "an object of the recorder beside its host room calls $symbol"
    done < <(nm -u $pieces /dev/null 2>/dev/null | awk '$1 == "U" { print $2 }' | sort -u |
        grep -E '^(vboard_|MI_|board_)')
fi

[ $violations -eq 0 ] || { echo "seams: $violations violations" >&2; exit 1; }
echo "seams: $(sources src | wc -l) library sources, $(sources platform | wc -l) platform sources, no violation"
