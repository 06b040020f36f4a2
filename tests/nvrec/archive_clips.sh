#!/bin/bash
# Recordings for the archive's tests: archive_clips.sh DIRECTORY
#
# An hour of one small picture a second, in fragments of a minute, as the recorder writes them: links
# of it under other names are days of recordings.
set -euo pipefail
mkdir -p "$1"
cd "$1"

encode() { ffmpeg -nostdin -v error -y "$@"; }
h264=(-c:v libx264 -preset ultrafast -bf 0 -pix_fmt yuv420p -sc_threshold 0)
fragments=(-movflags frag_keyframe+empty_moov+default_base_moof)

encode -f lavfi -i "testsrc2=size=64x48:rate=1:duration=3600" "${h264[@]}" -g 60 "${fragments[@]}" hour.mp4
encode -f lavfi -i "testsrc2=size=64x48:rate=25:duration=20" "${h264[@]}" -g 25 "${fragments[@]}" seconds.mp4
encode -i seconds.mp4 -c copy -cluster_time_limit 1000 seconds.mkv
encode -i seconds.mp4 -c copy plain.mp4
encode -f lavfi -i "testsrc2=size=64x48:rate=25:duration=20" -c:v libx264 -preset veryfast -bf 3 -pix_fmt yuv420p \
    -sc_threshold 0 -g 25 "${fragments[@]}" reordered.mp4
encode -f lavfi -i "testsrc2=size=64x48:rate=25:duration=10" -f lavfi -i "sine=duration=10:sample_rate=16000" \
    "${h264[@]}" -g 50 -c:a aac "${fragments[@]}" sound.mp4
