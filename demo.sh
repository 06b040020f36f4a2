#!/bin/bash
# A recorder's day in a minute, from a bare Debian 12: four network cameras on loopback, a wall of them, another
# layout, a camera that dies and comes back, recording, the recorder's own account of all that, playback by
# time of day, and a clip for the neighbour.
#
#   ./demo.sh
#
# What is left to look at is in out/demo: pictures of each step, the recordings, the clip, the configuration.
# With a screen (DISPLAY or WAYLAND_DISPLAY) a window shows it, and stays with the playback until it is closed.
set -euo pipefail
cd "$(dirname "$0")"
[ $# -eq 0 ] || { echo "usage: $0" >&2; exit 2; }

out=out/demo
nvrec=build/demo/bin/nvrec
names=("front door" "parking" "yard" "street")
cameras=() # processes
recorder=
began_s=$SECONDS

fail() { echo "demo.sh: $*" >&2; exit 1; }

finish() {
    [ -z "$recorder" ] || kill "$recorder" 2>/dev/null || true
    for camera in "${cameras[@]}"; do
        kill "$camera" 2>/dev/null || true
    done
}
trap finish EXIT

# told TEXT COMMAND...: run it with its output in a log, and how far it is on the terminal.
told() {
    local text=$1 log=$2 begin=$SECONDS told_at=-10 far
    shift 2
    "$@" >"$log" 2>&1 &
    local pid=$!
    while kill -0 $pid 2>/dev/null; do
        if [ $((SECONDS - begin - told_at)) -ge 10 ]; then
            told_at=$((SECONDS - begin))
            far=$(grep -ao '^\[[0-9]*/[0-9]*\]' "$log" | tail -n 1 || true)
            echo "$text: $told_at s $far"
        fi
        sleep 0.2
    done
    wait $pid || { tail -n 40 "$log" >&2; fail "$text: it failed (log: $log)"; }
}

build() {
    cmake --preset release -B build/demo -DBUILD_TESTING=OFF -DNVRHAL_BENCH=OFF -DNVRHAL_VBOARD=OFF &&
        cmake --build build/demo --target nvrec &&
        cc -O2 -o build/demo/bin/rtsp_camera tools/rtsp_camera.c \
            $(pkg-config --cflags --libs gstreamer-rtsp-server-1.0)
}

# The streams four times over, so that a camera has something to send for longer than the demonstration lasts.
encode() {
    local streams clip
    streams=$(tools/setup/camera_streams.sh build/cameras) || return 1
    for clip in $streams; do
        [ -s "$clip.long.mp4" ] || {
            ffmpeg -nostdin -v error -y -i "$clip" -c copy -f mp4 "$clip.once" &&
                ffmpeg -nostdin -v error -y -stream_loop 5 -i "$clip.once" -c copy -f mp4 "$clip.part" &&
                mv "$clip.part" "$clip.long.mp4"
        } || return 1
    done
}

# A camera on a port of loopback; 0 = a free one. Sets `port`, and its process in `cameras`.
start_camera() { # number, port
    local clip=${clips[$1]} codec=h264 line=$out/camera$1.port
    [ "$(ffprobe -v error -select_streams v -show_entries stream=codec_name -of csv=p=0 "$clip")" = h264 ] || codec=h265
    rm -f "$line"
    build/demo/bin/rtsp_camera "$clip" $codec "$2" <&7 >"$line" 2>>"$out/cameras.log" &
    cameras[$1]=$!
    for _ in $(seq 50); do
        read -r _ port <"$line" 2>/dev/null && return 0
        sleep 0.1
    done
    fail "camera $1 does not listen"
}

# step SECOND TEXT: wait for that second of the recorder's run, and say what comes.
step() {
    while [ $((SECONDS - shown_s)) -lt "$1" ]; do
        kill -0 "$recorder" 2>/dev/null || fail "the recorder ended early (log: $out/nvrec.log)"
        sleep 0.1
    done
    printf '%3d s  %s\n' "$1" "$2"
}

# A file that is there to look at; a picture's second counts from when the cameras answered.
left() {
    for _ in $(seq 60); do
        [ -s "$1" ] && { echo "       left: $1"; return; }
        sleep 0.1
    done
    fail "$1 was not written"
}

tools/setup/install.sh build demo
tools/setup/install.sh --optional footage || true # camera_streams.sh says what it does without
rm -rf "$out"
mkdir -p "$out" build/demo/bin
mkfifo "$out/cameras.input" # a camera runs until its input ends
exec 7<>"$out/cameras.input"
rm "$out/cameras.input"
told "building the recorder" out/build.log build
told "encoding the cameras' streams" out/encode.log encode
cat out/encode.log
clips=(build/cameras/camera*.long.mp4)
echo "built and encoded after $((SECONDS - began_s)) s"

{
    printf '[screen]\noverlay = "on"\nlayout = "2x2"\n\n[record]\ndirectory = "recordings"\n\n'
    printf '[control]\nsocket = "nvrec.socket"\n\n[log]\nfile = "nvrec.log"\n'
} >"$out/nvrec.toml"
ports=()
for i in 0 1 2 3; do
    start_camera $i 0
    ports[i]=$port
    printf '\n[[camera]]\nname = "%s"\nmain = "rtsp://127.0.0.1:%s/camera"\n' "${names[i]}" "$port" >>"$out/nvrec.toml"
done
$nvrec check "$out/nvrec.toml"

shown_s=$SECONDS
$nvrec run "$out/nvrec.toml" --picture "$out/1-wall.png,7" --picture "$out/2-layout.png,12" \
    --picture "$out/3-camera-lost.png,18" --picture "$out/4-camera-back.png,29" >"$out/closing-table.txt" &
recorder=$!
step 1 "four cameras on the wall, each of them recorded"
step 8 "the wall stands"
left "$out/1-wall.png"
$nvrec key --control "$out/nvrec.socket" layout
step 9 "another layout"
step 13 "the camera \"${names[1]}\" dies"
left "$out/2-layout.png"
kill "${cameras[1]}"
step 19 "its pane says so, and since when"
left "$out/3-camera-lost.png"
$nvrec status --control "$out/nvrec.socket" | tee "$out/status.txt" | sed 's/^/       /'
start_camera 1 "${ports[1]}"
step 20 "it is switched on again"
step 30 "it is back"
left "$out/4-camera-back.png"
$nvrec event --control "$out/nvrec.socket" "${names[2]}" "the gate was opened"
step 33 "the recorder is asked to end"
kill "$recorder"
wait "$recorder" || fail "the recorder ended with status $? ($out/closing-table.txt)"
recorder=
echo "       left: $out/recordings"
$nvrec list --dir "$out/recordings" | sed 's/^/       /'

echo "       what was in the yard twenty seconds ago?"
$nvrec find --dir "$out/recordings" --camera yard --at -20s | sed 's/^/       /'
$nvrec export --dir "$out/recordings" --camera yard --from -25s --to -15s "$out/clip.mp4"
left "$out/clip.mp4"
stays=(--duration 6)
[ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || stays=(--loop)
$nvrec play --dir "$out/recordings" --at -20s --overlay on "${stays[@]}" --picture "$out/5-playback.png,4" --log "$out/play.log" \
    >"$out/playback-table.txt"
left "$out/5-playback.png"
echo "$((SECONDS - shown_s)) s of running; all of it is in $PWD/$out"
