#!/bin/bash
# Cameras for the recorder's tests: record_clips.sh DIRECTORY
#
# Four cameras of 240 frames at 30 a second, a key frame every 10, in both codecs, with and without
# reordered pictures, with AAC, with A-law and without sound (a tone of 1 kHz); a small second stream;
# one that changes its size; one whose key frames stand four seconds apart.
set -euo pipefail
mkdir -p "$1"
cd "$1"

picture() { echo "testsrc2=size=$1:rate=30,hue=H=$2"; }
encode() { ffmpeg -nostdin -v error -y "$@"; }
h264=(-c:v libx264 -preset veryfast -sc_threshold 0 -pix_fmt yuv420p)
h265=(-c:v libx265 -preset ultrafast -pix_fmt yuv420p)
keys=(-g 10 -keyint_min 10)
h265_keys=keyint=10:min-keyint=10:scenecut=0:open-gop=0:log-level=error
tone=(-f lavfi -i "sine=frequency=1000:sample_rate=48000:duration=8" -shortest)

encode -f lavfi -i "$(picture 320x180 0)" "${tone[@]}" -frames:v 240 "${h264[@]}" "${keys[@]}" -bf 0 -c:a aac -ac 2 -b:a 96k camera0.mp4
encode -f lavfi -i "$(picture 320x180 1)" -frames:v 240 "${h264[@]}" "${keys[@]}" -bf 3 camera1.mkv
encode -f lavfi -i "$(picture 352x288 2)" -frames:v 240 "${h265[@]}" -x265-params "$h265_keys:bframes=0" camera2.mp4
encode -f lavfi -i "$(picture 352x288 3)" "${tone[@]}" -frames:v 240 "${h265[@]}" -x265-params "$h265_keys:bframes=2" -c:a pcm_alaw -ar 8000 camera3.mkv
encode -f lavfi -i "$(picture 160x96 1)" -frames:v 240 "${h264[@]}" "${keys[@]}" -bf 0 network1.mp4
encode -f lavfi -i "$(picture 320x180 2)" -frames:v 240 "${h264[@]}" -g 120 -keyint_min 120 -bf 2 sparse.mp4

# One after the other in one stream: first small, then large.
for size in 320x180 640x360; do
    encode -f lavfi -i "$(picture $size 0)" -frames:v 60 "${h264[@]}" "${keys[@]}" -bf 0 part$size.ts
done
cat part320x180.ts part640x360.ts >resized.ts
encode -f lavfi -i "sine=frequency=1000:sample_rate=48000:duration=8" tone.wav
