#!/bin/sh
# Encode the benchmark's clips: make_clips.sh DIRECTORY [FOOTAGE]
# Ten seconds each, as cameras send them: no B-frames, a key frame every two seconds. FOOTAGE is any
# video file; without one the pictures are generated.
set -eu
directory=$1
footage=${2:-}
mkdir -p "$directory"
for size in 1920x1080 1280x720 704x576 640x360; do
    width=${size%x*}
    height=${size#*x}
    for codec in h264 h265; do
        clip=$directory/$codec-$size.mkv
        [ -s "$clip" ] && continue
        if [ -n "$footage" ]; then
            input="-stream_loop -1 -i $footage"
        else
            input="-f lavfi -i testsrc2=size=$size:rate=25"
        fi
        case $codec in
        h264) encoder="libx264 -bf 0 -g 50" ;;
        h265) encoder="libx265 -x265-params log-level=error:bframes=0:keyint=50" ;;
        esac
        echo "encoding $clip"
        # shellcheck disable=SC2086 # words on purpose
        ffmpeg -nostdin -v error -y $input -frames:v 250 -r 25 -vf "scale=$width:$height,setsar=1" \
            -pix_fmt yuv420p -c:v $encoder -preset veryfast "$clip.part.mkv"
        mv "$clip.part.mkv" "$clip"
    done
done
