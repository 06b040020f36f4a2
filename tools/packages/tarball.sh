#!/bin/bash
# An archive for a board: the library over the system's real calls or over a porter's platform, with
# headers, packages for CMake and pkg-config, examples, and what a porter takes along.
#
#   tools/packages/tarball.sh [--toolchain FILE] [--platform linux|FOLDER] [CMAKE-ARGUMENT...]
#
# Without --toolchain it is for this machine; --platform is linux unless told otherwise. Further arguments
# go to CMake, such as -DNVRHAL_NVREC=ON -DNVRHAL_ADAPTER=LIBRARY for the recorder. The archive and its
# checksum are left in build/tarball. It is unpacked once, and the example recorder is built against it.
set -euo pipefail
cd "$(dirname "$0")/../.."

toolchain=()
platform=linux
while :; do
    case "${1:-}" in
    --toolchain) toolchain=("-DCMAKE_TOOLCHAIN_FILE=$(realpath "${2:?}")"); shift 2 ;;
    --platform) platform=${2:?}; shift 2 ;;
    *) break ;;
    esac
done
[ "$platform" = linux ] || platform=$(realpath "$platform")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

logged() { # COMMAND...
    "$@" >"$scratch/log" 2>&1 && return 0
    tail -n 60 "$scratch/log"
    echo "tarball: $* failed" >&2
    return 1
}

out=build/tarball
mkdir -p $out
# A folder of its own for every board and platform, made anew: settings of an earlier one do not stay.
logged cmake -S . -B "$scratch/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF -DNVRHAL_BENCH=OFF \
    -DNVRHAL_PLATFORM="$platform" "${toolchain[@]}" "$@"
logged cmake --build "$scratch/build"
logged cpack --config "$scratch/build/CPackConfig.cmake" -B "$scratch/packed"
archive=$(find "$scratch/packed" -maxdepth 1 -name '*.tar.gz')
cp "$archive" "$archive.sha256" $out
archive=$out/$(basename "$archive")

# Elsewhere, as on the machine of who gets it.
tar -xzf "$archive" -C "$scratch"
unpacked=$scratch/$(basename "$archive" .tar.gz)
library=$(readlink -f "$unpacked/lib/libnvrhal.so")
tests/abi/exported_names.sh "$library" tests/abi/exported_names.txt
adapter=()
if [ "$platform" = linux ]; then
    # In the place of the chip's: the skeleton's media interface, which refuses every call.
    cat >"$scratch/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(adapter LANGUAGES C)
find_package(nvrhal-platform REQUIRED)
file(GLOB sources \${NVRHAL_SHARED_DATA}/skeleton/*.c)
list(FILTER sources EXCLUDE REGEX "/board\\\\.c$")
add_library(adapter SHARED \${sources})
target_link_libraries(adapter PRIVATE nvrhal::platform)
END
    logged cmake -S "$scratch" -B "$scratch/adapter" "${toolchain[@]}" -DCMAKE_PREFIX_PATH="$unpacked" -DCMAKE_FIND_ROOT_PATH="$unpacked"
    logged cmake --build "$scratch/adapter"
    adapter=("-DADAPTER=$scratch/adapter/libadapter.so")
fi
logged cmake -S "$unpacked/share/nvrhal/examples" -B "$scratch/examples" "${toolchain[@]}" \
    -DCMAKE_PREFIX_PATH="$unpacked" -DCMAKE_FIND_ROOT_PATH="$unpacked" "${adapter[@]}"
logged cmake --build "$scratch/examples"
[ -x "$scratch/examples/recorder" ] || { echo "tarball: the example recorder is not there" >&2; exit 1; }

echo "tarball: $archive, $(stat -c %s "$archive") bytes; the library in it $(stat -c %s "$library") bytes, needs:"
readelf -d "$library" | sed -nE 's/.*\(NEEDED\).*\[(.*)\]/  \1/p'
