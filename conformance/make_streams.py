#!/usr/bin/env python3
"""Make streams.c: the encoded pictures that the conformance suite carries along as C arrays.

The pictures are computed here and encoded by ffmpeg with x264, x265 and its own JPEG encoder. The
product is checked in, so that the suite is built without an encoder; run this only to change the
pictures:  ./make_streams.py > streams.c

Every stream has no B-frames and one slice a frame. A table of frame lengths stands beside the bytes.
"""
import subprocess
import sys

COLOURS = {  # Y, U, V in limited range; the suite's own names of them are in streams.h
    "red": (81, 90, 240),
    "green": (145, 54, 34),
    "blue": (41, 240, 110),
    "yellow": (210, 16, 146),
    "cyan": (170, 166, 16),
    "magenta": (106, 202, 222),
}
QUADRANTS = (("red", "green"), ("blue", "yellow"))


def flat(width, height, y, u, v):
    return bytes([y]) * (width * height) + bytes([u]) * (width * height // 4) + bytes([v]) * (width * height // 4)


def quadrants(width, height):
    planes = []
    for plane in range(3):
        scale = 1 if plane == 0 else 2
        w, h = width // scale, height // scale
        for row in range(h):
            left, right = QUADRANTS[row >= h // 2]
            planes.append(bytes([COLOURS[left][plane]]) * (w // 2) + bytes([COLOURS[right][plane]]) * (w // 2))
    return b"".join(planes)


def encode(pictures, width, height, encoder):
    size = ["-f", "rawvideo", "-pix_fmt", "yuv420p", "-s", f"{width}x{height}", "-r", "25", "-i", "-"]
    command = ["ffmpeg", "-v", "error", *size, *encoder, "-"]
    return subprocess.run(command, input=b"".join(pictures), stdout=subprocess.PIPE, check=True).stdout


def h264(pictures, width, height, key_interval):
    options = f"bframes=0:keyint={key_interval}:min-keyint={key_interval}:scenecut=0:aud=1:slices=1:threads=1:" \
              "sliced-threads=0:force-cfr=1:ref=1:8x8dct=0:cabac=0:weightp=0:annexb=1"
    return encode(pictures, width, height,
                  ["-c:v", "libx264", "-profile:v", "baseline", "-qp", "12", "-x264-params", options,
                   "-bsf:v", "filter_units=remove_types=6", "-f", "h264"])


def h265(pictures, width, height, key_interval):
    options = f"bframes=0:keyint={key_interval}:min-keyint={key_interval}:scenecut=0:aud=1:pools=1:frame-threads=1:" \
              "repeat-headers=1:info=0:qp=14:log-level=none:hrd=0"
    return encode(pictures, width, height,
                  ["-c:v", "libx265", "-x265-params", options, "-bsf:v", "filter_units=remove_types=39|40",
                   "-f", "hevc"])


def cut(stream, delimiter):
    """The frames of a byte stream; each begins with an access unit delimiter."""
    starts = []
    at = stream.find(delimiter)
    while at >= 0:
        starts.append(at)
        at = stream.find(delimiter, at + 1)
    assert starts and starts[0] == 0, "no access unit delimiter at the start"
    return [stream[a:b] for a, b in zip(starts, starts[1:] + [len(stream)])]


def cut_h264(stream):
    return cut(stream, b"\0\0\0\1\x09")


def cut_h265(stream):
    return cut(stream, b"\0\0\0\1\x46")


def damaged(frames, first, last):
    """The frames, with the slices from `first` up to `last` cut short and their ends overwritten."""
    result = []
    for index, frame in enumerate(frames):
        if first <= index < last:
            keep = max(12, len(frame) // 2)
            noise = bytes((index * 37 + i * 91 + 13) % 251 + 4 for i in range(len(frame) - keep))
            frame = frame[:keep] + noise
        result.append(frame)
    return result


def write(name, frames, width, height, codec):
    data = b"".join(frames)
    print(f"\nstatic const uint8_t {name}_bytes[{len(data)}] = {{")
    for at in range(0, len(data), 20):
        print("    " + ", ".join(str(byte) for byte in data[at:at + 20]) + ",")
    print("};")
    print(f"static const uint32_t {name}_lengths[{len(frames)}] = {{")
    for at in range(0, len(frames), 16):
        print("    " + ", ".join(str(len(frame)) for frame in frames[at:at + 16]) + ",")
    print("};")
    print(f"const TestStream {name} = {{\"{name}\", {codec}, {width}, {height}, {len(data)}, {len(frames)}, "
          f"{name}_bytes, {name}_lengths}};")


def main():
    wide, high = 352, 288
    quad = quadrants(wide, high)
    print("/* streams.c - made by make_streams.py; the pictures are described in streams.h. */")
    print('#include "streams.h"')
    write("quad_h264", cut_h264(h264([quad] * 10, wide, high, 5)), wide, high, "MI_VDEC_CODEC_H264")
    write("quad_h265", cut_h265(h265([quad] * 10, wide, high, 5)), wide, high, "MI_VDEC_CODEC_H265")
    for name, colour in COLOURS.items():
        write(f"{name}_h264", cut_h264(h264([flat(wide, high, *colour)] * 10, wide, high, 5)), wide, high,
              "MI_VDEC_CODEC_H264")
    steps = [flat(wide, high, 40 + 8 * i, 128, 128) for i in range(24)]
    step = cut_h264(h264(steps, wide, high, 8))
    write("steps_h264", step, wide, high, "MI_VDEC_CODEC_H264")
    noise = [bytes((i * i * 7 + i * 13 + n * 29) % 233 for i in range(wide * high * 3 // 2)) for n in range(8)]
    rough = cut_h264(h264([flat(wide, high, *COLOURS["cyan"])] * 2 + noise[2:3] + [flat(wide, high, *COLOURS["cyan"])]
                          * 5 + [flat(wide, high, *COLOURS["magenta"])] * 4, wide, high, 8))
    assert len(rough) == 12
    small = damaged(rough, 2, 8)
    small[2] = small[2][:1500]
    write("broken_h264", small, wide, high, "MI_VDEC_CODEC_H264")
    large = [flat(1920, 1080, *COLOURS["green"])] * 30
    write("large_h264", cut_h264(h264(large, 1920, 1080, 30)), 1920, 1080, "MI_VDEC_CODEC_H264")
    picture = encode([quad], wide, high, ["-c:v", "mjpeg", "-q:v", "3", "-pix_fmt", "yuvj420p", "-f", "mjpeg"])
    write("quad_jpeg", [picture], wide, high, "MI_VDEC_CODEC_JPEG")


if __name__ == "__main__":
    sys.exit(main())
