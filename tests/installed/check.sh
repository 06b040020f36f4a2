#!/bin/bash
# Applications outside the tree against an installed nvrhal: built in C and in C++, with pkg-config and
# with CMake, and run; and the installed examples. Each shows a picture, and it is looked at.
#
#   tests/installed/check.sh SCRATCH [PREFIX]
#
# Without PREFIX it is what the system's packages have installed. Needs gcc, g++, cmake, make,
# pkg-config, ffmpeg.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
scratch=${1:?usage: check.sh SCRATCH [PREFIX]}
prefix=${2:-}
mkdir -p "$scratch"
cd "$scratch"

fail() { echo "installed: $1" >&2; exit 1; }

cmake_options=(-DCMAKE_BUILD_TYPE=Debug)
run_path=()
shared_data=/usr/share/nvrhal
if [ -n "$prefix" ]; then
    libraries=$(dirname "$(find "$prefix" -name nvrhal.pc | head -n 1)")
    [ "$libraries" != . ] || fail "$prefix holds no nvrhal.pc"
    export PKG_CONFIG_PATH=$libraries
    libraries=$(dirname "$libraries")
    cmake_options+=("-DCMAKE_PREFIX_PATH=$prefix")
    run_path=("-Wl,-rpath,$libraries")
    shared_data=$prefix/share/nvrhal
fi

# What the applications show: red on the left, blue on the right.
for codec in libx265:h265:x265-params=log-level=error:bframes=0 libx264:h264:bf=0; do
    IFS=: read -r encoder extension option more <<<"$codec"
    ffmpeg -nostdin -v error -y -f lavfi -i color=red:size=640x360,drawbox=x=320:w=320:h=360:color=blue:t=fill \
        -frames:v 1 -pix_fmt yuv420p -c:v "$encoder" "-${option%%=*}" "${option#*=}${more:+:$more}" frame."$extension"
done

shows() { # COMMAND...: a picture
    local status=0
    timeout 60 "$@" >said 2>&1 || status=$?
    [ $status -eq 0 ] || { cat said; fail "$* ends with status $status"; }
    grep '^picture: ' said | tail -n 1
}

echo "installed: with pkg-config, version $(pkg-config --modversion nvrhal)"
flags=($(pkg-config --cflags nvrhal vboard))
libs=($(pkg-config --libs nvrhal vboard))
gcc -std=c11 -Wall -Wextra -Werror "${flags[@]}" "$here/picture.c" -o picture_in_c "${libs[@]}" "${run_path[@]}"
g++ -std=c++17 -Wall -Wextra -Werror "${flags[@]}" "$here/picture.cpp" -o picture_in_cxx "${libs[@]}" "${run_path[@]}"
shows ./picture_in_c frame.h265
shows ./picture_in_cxx frame.h264
flags=($(pkg-config --cflags nvrhal-platform))
gcc -std=c11 -Wall -Wextra -Werror "${flags[@]}" -c "$here/seams.c" -o seams.o
seams=$(pkg-config --cflags-only-I nvrhal-platform | sed 's/^-I//; s/ *$//')
[ -e "$seams/board_io.h" ] || fail "there are no headers of the seams in $seams"
for header in "$seams"/*.h; do
    echo "#include <$(basename "$header")>"
done >all_seams.c
gcc -std=c11 -Wall -Wextra -Werror "${flags[@]}" -c all_seams.c -o all_seams.o
g++ -std=c++17 -Wall -Wextra -Werror "${flags[@]}" -x c++ -c all_seams.c -o all_seams_in_cxx.o

echo "installed: with CMake"
rm -rf build
cmake -S "$here" -B build "${cmake_options[@]}" >cmake.log 2>&1 || { cat cmake.log; fail "CMake does not find it"; }
cmake --build build -j2 >>cmake.log 2>&1 || { cat cmake.log; fail "the applications do not build"; }
shows build/picture_in_c frame.h265
shows build/picture_in_cxx frame.h264

echo "installed: the examples"
rm -rf examples
cmake -S "$shared_data/examples" -B examples "${cmake_options[@]}" >examples.log 2>&1 || { cat examples.log; fail "CMake does not take the examples"; }
cmake --build examples -j2 >>examples.log 2>&1 || { cat examples.log; fail "the examples do not build"; }
rm -f screen.png
examples/minimal frame.h265 >said 2>&1 || { cat said; fail "the minimal example fails"; }
[ -s screen.png ] || fail "the minimal example leaves no picture"
ffmpeg -nostdin -v error -y -i screen.png -vf crop=1:1:480:540 -f rawvideo -pix_fmt rgb24 pixel
read -r red green blue < <(od -An -tu1 pixel)
[ "$red" -gt 180 ] && [ "$green" -lt 80 ] && [ "$blue" -lt 80 ] || fail "its picture is $red $green $blue, not red"
echo "installed: all of it shows its picture"
