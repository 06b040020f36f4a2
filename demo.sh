#!/bin/bash
# Four cameras on one screen, from a bare Debian 12: install what is missing, build the recorder,
# make camera streams, show the wall, leave a picture of it in out/wall.png.
#
#   ./demo.sh [SECONDS]      how long the wall runs; 10 unless said otherwise
#
# With a screen (DISPLAY or WAYLAND_DISPLAY) a window shows the wall meanwhile.
set -euo pipefail
cd "$(dirname "$0")"

seconds=${1:-10}
picture=out/wall.png
[[ $seconds =~ ^[0-9]+$ ]] && [ "$seconds" -ge 2 ] || { echo "usage: $0 [SECONDS, 2 or more]" >&2; exit 2; }

tools/setup/install.sh build demo
tools/setup/install.sh --optional footage || true # camera_streams.sh says what it does without

mkdir -p out build/demo
echo "building nvrec (log: out/build.log)"
{
    cmake --preset release -B build/demo -DBUILD_TESTING=OFF -DNVRHAL_BENCH=OFF &&
        cmake --build build/demo --target nvrec
} >out/build.log 2>&1 || { tail -n 40 out/build.log >&2; echo "demo.sh: the build failed" >&2; exit 1; }

streams=$(tools/setup/camera_streams.sh build/cameras)
mapfile -t cameras <<<"$streams"

echo "showing ${#cameras[@]} cameras for $seconds s (the library's log: out/nvrec.log)"
rm -f "$picture"
build/demo/bin/nvrec wall --layout 2x2 --loop --duration "$seconds" \
    --furniture on --language zh --name 0=前门 --name 1=停车场 --name 2=后院 --name 3=街道 \
    --picture "$picture,$((seconds - 1))" --log out/nvrec.log "${cameras[@]}"

[ -s "$picture" ] || { echo "demo.sh: no picture was written" >&2; exit 1; }
echo "a picture of the wall: $PWD/$picture"
