#!/bin/bash
# What the library costs a board: size by section, relocation records, stack of every public call, memory and
# platform calls of a start. For amd64 and for 32-bit ARM, as shipped.
#
#   bench/footprint/footprint.sh [JOBS]     or: cmake --build build/release --target footprint
#
# Exit status 1: on 32-bit ARM code and read-only data without text tables are not under 80 KB, or a public
# call's stack is not under 4 KB on either.
set -euo pipefail
cd "$(dirname "$0")/../.."

export CCACHE_DISABLE=1 # a cache gives objects back without their call graphs
jobs=${1:-$(nproc)}
code_limit=80000
stack_limit=4096
result=0

# footprint NAME CODE-LIMIT EMULATOR CMAKE-ARGUMENTS...
footprint() {
    local name=$1 limit=$2 emulator=$3 build=build/footprint-$1
    shift 3
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DNVRHAL_PLATFORM=linux -DNVRHAL_TESTS=OFF \
        -DNVRHAL_NVREC=OFF -DNVRHAL_EXAMPLES=OFF -DNVRHAL_BENCH=OFF -DNVRHAL_C_TESTS=ON \
        -DCMAKE_CXX_FLAGS=-fcallgraph-info=su "$@" >"$build.log" 2>&1 &&
        cmake --build "$build" -j "$jobs" --target nvrhal start_up >>"$build.log" 2>&1 ||
        { tail -n 30 "$build.log"; exit 1; }
    echo "== $name"
    bench/footprint/sizes.py "$build/lib/libnvrhal.so" $limit || result=1
    bench/footprint/stack.py "$build/lib/libnvrhal.so" "$build/src/CMakeFiles/nvrhal_objects.dir" $stack_limit || result=1
    $emulator "$build/bin/start_up"
}

mkdir -p build
footprint amd64 "" ""
footprint armhf $code_limit qemu-arm "-DCMAKE_TOOLCHAIN_FILE=$PWD/cmake/armhf.cmake"
exit $result
