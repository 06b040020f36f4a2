#!/bin/bash
# Build the library over platforms from outside the tree, as a porter does: a copy of the skeleton, and the
# example's adapter for a made-up chip.
#
#   tools/port.sh [JOBS]
#
# The skeleton gives a library that exports, needs and says what it should, and folders that are no
# platform are refused with a line that helps. Over the adapter a recorder takes its first steps; and in ten
# steps, from the skeleton to the adapter, each turns points of the conformance suite green.
set -euo pipefail
cd "$(dirname "$0")/.."

jobs=${1:-$(nproc)}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() { echo "port: $1" >&2; exit 1; }

configure() { # platform's folder, build folder
    cmake -S . -B "$2" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF -DNVRHAL_NVREC=OFF \
        -DNVRHAL_PLATFORM="$1" >"$scratch/log" 2>&1
}

over() { # platform's folder, build folder
    { configure "$1" "$2" && cmake --build "$2" -j "$jobs" --target nvrhal >"$scratch/log" 2>&1; } ||
        { cat "$scratch/log"; fail "the library does not build over $1"; }
}

expect_refused() { # what the log says; the command that failed comes before
    grep -qF -- "$1" "$scratch/log" || { cat "$scratch/log"; fail "it is not said: $1"; }
}

# The skeleton, whole.
cp -r platform/skeleton "$scratch/copy"
over "$scratch/copy" build/port
tests/abi/exported_names.sh build/port/lib/libnvrhal.so tests/abi/exported_names.txt
tests/abi/needed_libraries.sh build/port/lib/libnvrhal.so
cat >"$scratch/start.c" <<'END'
#include "nvrhal.h"

int main(void)
{
    static DeviceParams params;
    params.vi_chn_num = 4;
    params.gui_width = 1920;
    params.gui_height = 1080;
    return ext_device_init(&params) == -1 ? 0 : 1;
}
END
cc -Iinclude "$scratch/start.c" -Lbuild/port/lib -lnvrhal -Wl,-rpath,"$PWD/build/port/lib" -o "$scratch/start"
"$scratch/start" >"$scratch/log" 2>&1 || { cat "$scratch/log"; fail "the library starts over the skeleton"; }
expect_refused "skeleton: MI_SYS_Init: unsupported"

# Without its board I/O, which then is the system's own; the path is a relative one.
sed -i '/board\.c/d' "$scratch/copy/CMakeLists.txt"
over "$(realpath --relative-to=. "$scratch/copy")" build/port
"$scratch/start" >"$scratch/log" 2>&1 || { cat "$scratch/log"; fail "the library starts over the skeleton"; }

# Without one of its functions.
sed -i 's/MI_VENC_ResetChn/forgotten/' "$scratch/copy/venc.c"
configure "$scratch/copy" build/port
! cmake --build build/port -j "$jobs" --target nvrhal >"$scratch/log" 2>&1 || fail "a missing function goes unnoticed"
expect_refused "MI_VENC_ResetChn"

# What is no platform.
! configure "$scratch/nowhere" "$scratch/build" || fail "a folder that is not there is taken for a platform"
expect_refused "a folder with a CMakeLists.txt"
mkdir "$scratch/empty"
touch "$scratch/empty/CMakeLists.txt"
rm -rf "$scratch/build"
! configure "$scratch/empty" "$scratch/build" || fail "a folder without the target is taken for a platform"
expect_refused "defines no target nvrhal_platform"

# The made-up chip.
cp -r examples/port "$scratch/port"
over "$scratch/port/adapter" build/port-tern
tests/abi/exported_names.sh build/port-tern/lib/libnvrhal.so tests/abi/exported_names.txt
tests/abi/needed_libraries.sh build/port-tern/lib/libnvrhal.so
cc -Iinclude tests/port/recorder.c -Lbuild/port-tern/lib -lnvrhal -lpthread \
    -Wl,-rpath,"$PWD/build/port-tern/lib" -o "$scratch/recorder"
timeout 60 "$scratch/recorder" >"$scratch/log" 2>&1 || { cat "$scratch/log"; fail "a recorder runs over the adapter"; }

# The port, step by step.
tests/port/ten_steps.sh "$scratch/steps" >"$scratch/log" 2>&1 || { cat "$scratch/log"; fail "the port in ten steps"; }
grep -E "^(step|whole)" "$scratch/log"
echo "port: the library stands over a platform from outside the tree"
