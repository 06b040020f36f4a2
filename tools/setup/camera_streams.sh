#!/bin/bash
# Make four camera streams for the demonstration, cached in a directory; print their paths.
#
#   tools/setup/camera_streams.sh DIRECTORY
#
# The footage is vtest.avi of Debian's opencv-doc: a street camera, 768x576, 10 frames a second.
# Each camera sees another part of the scene at another time, in a size, rate, codec and container
# of its own. Without the footage the pictures are generated, and a line says so.
set -euo pipefail

[ $# -eq 1 ] || { echo "usage: $0 DIRECTORY" >&2; exit 2; }
directory=$1
seconds=20
mkdir -p "$directory"

find_footage() {
    local path
    path=$(dpkg -L opencv-doc 2>/dev/null | grep -E '/vtest\.avi(\.gz)?$' | head -n 1) || return 1
    [ -s "$path" ] || return 1
    if [[ $path == *.gz ]]; then
        gzip -dc "$path" >"$directory/vtest.avi.part"
        mv "$directory/vtest.avi.part" "$directory/vtest.avi"
        path=$directory/vtest.avi
    fi
    echo "$path"
}

# name: output file; start: second of the footage; crop: part of the scene (w:h:x:y)
encode() {
    local name=$1 size=$2 rate=$3 start=$4 crop=$5 encoder=$6
    local target=$directory/$name source filter options
    [ -s "$target" ] && return 0
    if [ -n "$footage" ]; then
        source=(-ss "$start" -i "$footage")
        filter="crop=$crop,scale=${size/x/:}:flags=bicubic,setsar=1,fps=$rate"
    else
        source=(-f lavfi -i "testsrc2=size=$size:rate=$rate")
        filter=null
    fi
    case $encoder in
    libx264) options=(-preset veryfast -tune zerolatency -crf 23) ;;
    libx265) options=(-preset ultrafast -crf 26 -x265-params "log-level=error:bframes=0") ;;
    esac
    # A key frame every two seconds, as cameras send them.
    ffmpeg -nostdin -v error -y "${source[@]}" -t "$seconds" -an -vf "$filter" -pix_fmt yuv420p \
        -c:v "$encoder" "${options[@]}" -g $((rate * 2)) "$directory/part-$name"
    mv "$directory/part-$name" "$target"
}

footage=$(find_footage) || {
    footage=
    echo "camera streams: no footage (package opencv-doc); the pictures are generated" >&2
}
[ -n "$footage" ] && kind=footage || kind=generated
# Streams made without the footage are made again once it is there.
if [ "$(cat "$directory/kind" 2>/dev/null)" != "$kind" ]; then
    rm -f "$directory"/camera*.*
    echo "$kind" >"$directory/kind"
    echo "camera streams: encoding four cameras of $seconds s, once" >&2
fi

#      name          size      rate start crop             encoder
encode camera1.mp4   1920x1080 25   0     768:432:0:72     libx264
encode camera2.h265  1280x720  25   15    560:316:0:120    libx265
encode camera3.h264  704x576   15   30    528:432:240:144  libx264
encode camera4.mkv   640x360   10   45    480:270:160:200  libx265

for name in camera1.mp4 camera2.h265 camera3.h264 camera4.mkv; do
    echo "$directory/$name"
done
