#!/bin/bash
# Build the library for 32-bit ARM with musl, see that it needs no C++ run-time library, and run its main
# operations under an emulator, with musl's own loader. Then the same over a platform of its own, the
# example's adapter for a made-up chip: a recorder, and the conformance suite.
#
#   tools/musl.sh [JOBS]
#
# libqrencode is built from Debian's source package: no build of it for musl is to be had.
set -euo pipefail
cd "$(dirname "$0")/.."

jobs=${1:-$(nproc)}
root=$PWD/build/musl-root
build=build/armhf-musl
over_tern=build/armhf-musl-tern
conformance=build/armhf-musl-conformance
toolchain=$PWD/cmake/armhf-musl.cmake
patience=4 # an emulator takes its time

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
emulated() { qemu-arm -E "LD_LIBRARY_PATH=$root/lib:$(dirname "$1")/../lib" "$@"; }

# configure SOURCES BUILD ARGUMENTS...: with musl, as shipped, the library alone.
configure() {
    cmake -S "$1" -B "$2" -G Ninja "-DCMAKE_TOOLCHAIN_FILE=$toolchain" -DCMAKE_BUILD_TYPE=Release \
        -DNVRHAL_WERROR=ON -DNVRHAL_TESTS=OFF -DNVRHAL_C_TESTS=ON -DNVRHAL_NVREC=OFF -DNVRHAL_EXAMPLES=OFF \
        -DNVRHAL_BENCH=OFF "${@:3}"
}

[ -e "$root/lib/libqrencode.so" ] || build_libqrencode
# A compiler cache would give objects back without their call graphs.
CXXFLAGS=-fcallgraph-info=su configure . $build -DNVRHAL_PLATFORM=linux
CCACHE_DISABLE=1 cmake --build $build -j "$jobs" --target nvrhal operations tables_at_load

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

configure . $over_tern -DNVRHAL_PLATFORM=examples/port/adapter
cmake --build $over_tern -j "$jobs" --target nvrhal port_recorder
needs "$(readlink -f $over_tern/lib/libnvrhal.so)" "libc.so libqrencode.so.4"
emulated $over_tern/bin/port_recorder >/dev/null || fail "a recorder does not run over the adapter"

archives=$PWD/$over_tern/platform
configure conformance $conformance \
    "-DCONFORMANCE_BOARD=$archives/ported/libnvrhal_platform.a;$archives/ported/libtern.a;$archives/linux/libplatform_linux.a" \
    "-DCONFORMANCE_INCLUDE=$PWD/platform/include;$PWD/examples/port/tern" \
    "-DCONFORMANCE_HOOKS=$PWD/examples/port/adapter/tern_hooks.c"
cmake --build $conformance -j "$jobs"
# A machine that is busy with other work may let time pass between two calls that belong together: what broke
# is tried again alone.
table=$conformance/table.txt
emulated $conformance/nvrhal-conformance --patience $patience | tee $table || [ "${PIPESTATUS[0]}" -eq 1 ] ||
    fail "the conformance suite did not run"
for point in $(awk '$1 == "broken" { print $2 }' $table); do
    emulated $conformance/nvrhal-conformance --patience $patience --only "$point" || fail "broken, alone as well: $point"
done
held=$(grep -c '^held' $table)
[ "$held" -ge 300 ] || fail "only $held points of the conformance suite were held"
echo "musl: built without a C++ run-time library, does under the emulator what the golden files say, and holds" \
    "$held points over a platform of its own"
