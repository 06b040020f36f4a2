#!/bin/bash
# Small clips for the recorder's input tests: clips.sh DIRECTORY
#
# 60 frames of 320x180 at 30 frames a second, a key frame every 20, in both codecs and every kind of
# container; and files that are no camera.
set -euo pipefail
mkdir -p "$1"
cd "$1"

encode() { ffmpeg -nostdin -v error -y -f lavfi -i "testsrc2=size=320x180:rate=30" -frames:v 60 -pix_fmt yuv420p "$@"; }
h264=(-c:v libx264 -preset veryfast -g 20 -keyint_min 20 -sc_threshold 0)
h265=(-c:v libx265 -preset ultrafast -x265-params "log-level=error:keyint=20:min-keyint=20:scenecut=0:open-gop=0")

h265_live=(-c:v libx265 -preset ultrafast -x265-params "log-level=error:keyint=20:min-keyint=20:scenecut=0:bframes=0")

encode "${h264[@]}" -bf 0 plain.h264
encode "${h264[@]}" -bf 2 reordered.h264
encode "${h265[@]}" reordered.h265
for container in mp4 mkv; do
    ffmpeg -nostdin -v error -y -fflags +genpts -r 30 -i plain.h264 -c copy h264.$container
done
encode "${h265[@]}" h265.mp4
encode "${h265[@]}" h265.mkv
encode -c:v mjpeg motion_jpeg.mkv
ffmpeg -nostdin -v error -y -f lavfi -i "sine=frequency=440" -t 1 sound.wav

# A recording whose sound lies behind two seconds of pictures.
ffmpeg -nostdin -v error -y -f lavfi -i "testsrc2=size=320x180:rate=30" -f lavfi -i "sine=frequency=440" -t 4 \
    -pix_fmt yuv420p -c:v libx264 -preset veryfast -g 60 -keyint_min 60 -bf 0 -c:a pcm_alaw -ar 8000 -ac 1 \
    -movflags frag_keyframe+empty_moov+default_base_moof fragments.mov

# A recording cut out of another without encoding: an edit list begins it ten pictures behind its key frame.
ffmpeg -nostdin -v error -y -ss 1 -i h264.mp4 -c copy edited.mp4

# A recording whose sound goes on for two seconds behind its last picture.
ffmpeg -nostdin -v error -y -f lavfi -i "testsrc2=size=320x180:rate=30:duration=1" -f lavfi \
    -i "sine=frequency=440:duration=3" -pix_fmt yuv420p "${h264[@]}" -bf 0 -c:a aac -ac 1 -ar 16000 long_sound.mp4

# A camera that talks: pictures and sound for fourteen seconds.
ffmpeg -nostdin -v error -y -f lavfi -i "testsrc2=size=320x180:rate=30" -f lavfi -i "sine=frequency=440" -t 14 \
    -pix_fmt yuv420p "${h264[@]}" -bf 0 -c:a pcm_alaw -ar 8000 -ac 1 talking.mov

# Two recordings joined as a transport stream: its time stamps fall back in the middle.
ffmpeg -nostdin -v error -y -i h264.mp4 -c copy -output_ts_offset 3600 -f mpegts part.ts
ffmpeg -nostdin -v error -y -i h264.mp4 -c copy -f mpegts back.ts
cat part.ts back.ts part.ts >joined.ts

# A camera that changes its picture size: the second half is larger.
ffmpeg -nostdin -v error -y -f lavfi -i "testsrc2=size=640x360:rate=30" -frames:v 20 -pix_fmt yuv420p "${h264[@]}" -bf 0 large.h264
cat plain.h264 large.h264 >resized.h264
head -c 20000 /dev/zero >zeros.h264
: >empty.h264

# Cameras that see one colour each: which pane shows which is told by a pixel. One run of the program makes
# them all, as its start costs more than a clip.
inputs=()
outputs=()
number=0
for colour in red lime blue yellow cyan magenta; do
    inputs+=(-f lavfi -i "color=c=$colour:size=352x288:rate=30")
    for container in "" .mp4; do
        outputs+=(-map $number -frames:v 30 -pix_fmt yuv420p "${h264[@]}" -bf 0 colour$number.h264$container)
        outputs+=(-map $number -frames:v 30 -pix_fmt yuv420p "${h265_live[@]}" colour$number.h265$container)
    done
    number=$((number + 1))
done
ffmpeg -nostdin -v error -y "${inputs[@]}" "${outputs[@]}"
