#!/bin/bash
# Build the library for 32-bit ARM with musl, see that it needs no C++ run-time library, and run its main
# operations under an emulator, with musl's own loader.
#
#   tools/musl.sh [JOBS]
#
# libqrencode is built from Debian's source package: no build of it for musl is to be had.
set -euo pipefail
cd "$(dirname "$0")/.."

jobs=${1:-$(nproc)}
root=$PWD/build/musl-root
build=build/armhf-musl
toolchain=$PWD/cmake/armhf-musl.cmake

fail() { echo "musl: $1" >&2; exit 1; }

# fetch_source NAME DIRECTORY: the upstream archive of a source package, from the mirrors that are configured,
# with lists of their own, so that nothing of the machine's set-up is touched. apt checks it.
fetch_source() {
    local name=$1 directory=$2 options
    mkdir -p "$directory/lists/partial" "$directory/cache/archives/partial"
    apt-get indextargets --format 'deb-src $(REPO_URI) $(CODENAME) $(COMPONENT)' \
        'Created-By: Packages' 'Origin: Debian' 'Component: main' | sort -u >"$directory/sources.list"
    options=(-q -o "Dir::Etc::sourcelist=$directory/sources.list" -o Dir::Etc::sourceparts=/nonexistent
        -o "Dir::State::lists=$directory/lists" -o "Dir::Cache=$directory/cache" -o Debug::NoLocking=1
        -o Acquire::Retries=3 -o APT::Sandbox::User="$(id -un)")
    apt-get "${options[@]}" update
    (cd "$directory" && apt-get "${options[@]}" source --download-only --tar-only "$name")
}

build_libqrencode() {
    local scratch
    scratch=$(mktemp -d)
    fetch_source qrencode "$scratch" || fail "the source package qrencode cannot be had"
    mkdir "$scratch/source"
    tar -x --strip-components=1 -C "$scratch/source" -f "$scratch"/qrencode_*.orig.tar.*
    cmake -S "$scratch/source" -B "$scratch/build" -G Ninja "-DCMAKE_TOOLCHAIN_FILE=$toolchain" \
        -DCMAKE_BUILD_TYPE=Release "-DCMAKE_INSTALL_PREFIX=$root" -DBUILD_SHARED_LIBS=ON \
        -DWITH_TOOLS=NO -DWITHOUT_PNG=ON
    cmake --build "$scratch/build" -j "$jobs" --target install
    rm -rf "$scratch"
}

# needs PROGRAM LIBRARIES: exactly these, in alphabetical order.
needs() {
    local found
    found=$(readelf --dynamic --wide "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | LC_ALL=C sort | xargs)
    [ "$found" = "$2" ] || fail "$1 needs $found, not $2"
}

# emulated PROGRAM ARGUMENTS...: the loader that the program asks for is musl's.
emulated() { qemu-arm -E "LD_LIBRARY_PATH=$root/lib:$build/lib" "$@"; }

export CCACHE_DISABLE=1 # a cache gives objects back without their call graphs
[ -e "$root/lib/libqrencode.so" ] || build_libqrencode
CXXFLAGS=-fcallgraph-info=su cmake -S . -B $build -G Ninja "-DCMAKE_TOOLCHAIN_FILE=$toolchain" -DCMAKE_BUILD_TYPE=Release \
    -DNVRHAL_WERROR=ON -DNVRHAL_PLATFORM=linux -DNVRHAL_TESTS=OFF -DNVRHAL_C_TESTS=ON -DNVRHAL_NVREC=OFF \
    -DNVRHAL_EXAMPLES=OFF -DNVRHAL_BENCH=OFF
cmake --build $build -j "$jobs" --target nvrhal operations tables_at_load

library=$(readlink -f $build/lib/libnvrhal.so)
needs "$library" "libc.so libqrencode.so.4"
needs $build/bin/operations "libc.so libqrencode.so.4"
# Without a C++ run-time library on the command line a call into it would stand here.
[ -z "$(nm -D --undefined-only "$library" | grep -E ' _Z| __cxa_(throw|guard|pure)| __gxx')" ] ||
    fail "the library calls a C++ run-time function"
tests/abi/exported_names.sh "$library" tests/abi/exported_names.txt
tests/abi/relocations.sh "$library" 400
bench/footprint/sizes.py "$library" 80000
bench/footprint/stack.py "$library" $build/src/CMakeFiles/nvrhal_objects.dir 4096
readelf --program-headers --wide $build/bin/operations | grep -q 'interpreter: /lib/ld-musl-armhf.so.1' ||
    fail "the program does not ask for musl's loader"

emulated $build/bin/operations tests/trace/golden
emulated $build/bin/tables_at_load
echo "musl: built without a C++ run-time library, and does under the emulator what the golden files say"
