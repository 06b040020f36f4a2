#!/usr/bin/env python3
"""remote.py - what the board's page costs the recorder: the same wall of four cameras alone, and under
"vboard run" with a browser's live screen and events open.

    remote.py --vboard PROGRAM --nvrec PROGRAM [--seconds N] [--size 1280x720]

Prints pictures decoded and shown and the processor time of the recorder and of the board's server, both ways, and
their ratios. Needs ffmpeg, which encodes the cameras' streams.
"""
import argparse
import json
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import threading
import time
import urllib.request

TICKS = os.sysconf("SC_CLK_TCK")
CAMERAS = 4


def seconds_used(pid):
    """Processor time of a process, its threads included."""
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / TICKS


def make_clip(folder, number, size, seconds):
    clip = folder / f"camera{number}.mp4"
    subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i",
                    f"testsrc2=size={size}:rate=25,hue=h={number * 90}", "-t", str(seconds), "-c:v", "libx264",
                    "-preset", "veryfast", "-bf", "0", "-g", "25", "-pix_fmt", "yuv420p", str(clip)], check=True)
    return str(clip)


class Live(threading.Thread):
    """What the page does while it shows the screen: asks for picture after picture, and takes the states."""

    def __init__(self, url, token):
        super().__init__(daemon=True)
        self.address, self.token, self.pictures, self.bytes = url.split("/")[2], token, 0, 0

    def open(self, path):
        import socket
        host, _, port = self.address.partition(":")
        connection = socket.create_connection((host, int(port)))
        connection.sendall((f"GET {path} HTTP/1.1\r\nHost: {self.address}\r\nUpgrade: websocket\r\nConnection: Upgrade"
                            f"\r\nAuthorization: Bearer {self.token}\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n"
                            "Sec-WebSocket-Version: 13\r\n\r\n").encode())
        stream = connection.makefile("rb")
        while stream.readline() not in (b"\r\n", b""):
            pass
        return connection, stream

    @staticmethod
    def send(connection, text):
        connection.sendall(bytes([0x81, 0x80 | len(text)]) + bytes(4) + text.encode())

    @staticmethod
    def receive(stream):
        first, second = stream.read(2)
        length = second & 127
        if length == 126:
            (length,) = struct.unpack(">H", stream.read(2))
        elif length == 127:
            (length,) = struct.unpack(">Q", stream.read(8))
        return first & 15, stream.read(length)

    def run(self):
        try:
            events, self.events_stream = self.open("/api/1/events")
            self.send(events, '{"subscribe": ["state", "board"]}')
            threading.Thread(target=self.drain, daemon=True).start()
            connection, stream = self.open("/api/1/live?width=960&rate=12")
            while True:
                self.send(connection, "next")
                kind, content = self.receive(stream)
                if kind == 2:
                    self.pictures += 1
                    self.bytes += len(content)
        except (OSError, ValueError, struct.error):
            pass  # the run is over

    def drain(self):
        try:
            while True:
                self.receive(self.events_stream)
        except (OSError, ValueError, struct.error):
            pass


def wall(given, clips, folder, watched):
    report = folder / "report.json"
    recorder = [given.nvrec, "wall", *clips, "--layout", "2x2", "--window", "off", "--loop", "--duration",
                str(given.seconds), "--log", str(folder / "log"), "--json", str(report), "--control", "none"]
    environment = dict(os.environ, XDG_RUNTIME_DIR=str(folder))
    command = [given.vboard, "run", "--board", "bench", "--quiet", "--", *recorder] if watched else recorder
    process = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    recorder_pid, live = process.pid, None
    if watched:
        file = folder / "vboard/bench.json"
        while not file.exists() or not json.loads(file.read_text() or "{}").get("url"):
            time.sleep(0.02)
        board = json.loads(file.read_text())
        while recorder_pid == process.pid:
            request = urllib.request.Request(board["url"] + "api/1/board",
                                             headers={"Authorization": "Bearer " + board["token"]})
            recorder_pid = json.load(urllib.request.urlopen(request))["pid"] or process.pid
        live = Live(board["url"], board["token"])
        live.start()
    used, used_by_server = 0.0, 0.0
    while process.poll() is None:
        try:
            used = seconds_used(recorder_pid)
            used_by_server = seconds_used(process.pid) if watched else 0.0
        except (OSError, IndexError):
            pass
        time.sleep(0.1)
    if process.returncode != 0:
        sys.exit("remote.py: " + process.stderr.read().decode())
    return json.loads(report.read_text()), used, used_by_server, live


def counted(report, name):
    """A number of the closing table, added over all cameras."""
    rows = report if isinstance(report, list) else next(value for value in report.values() if isinstance(value, list))
    return sum(row[name] for row in rows)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--vboard", required=True)
    parser.add_argument("--nvrec", required=True)
    parser.add_argument("--seconds", type=int, default=20)
    parser.add_argument("--size", default="1280x720")
    given = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        clips = [make_clip(folder, number, given.size, 10) for number in range(CAMERAS)]
        print(f"{CAMERAS} cameras of {given.size}, 25 pictures/s, {given.seconds} s; load {os.getloadavg()[0]:.1f}")
        figures = []
        for watched in (False, True):
            report, used, by_server, live = wall(given, clips, folder, watched)
            decoded, shown = counted(report, "decoded"), counted(report, "shown")
            figures.append((decoded, shown, used))
            print(f"{'with the page' if watched else 'alone':14}  decoded {decoded:6}  shown {shown:6}  "
                  f"recorder {used / given.seconds:6.3f} cores" +
                  (f"  server {by_server / given.seconds:6.3f} cores  live {live.pictures / given.seconds:5.1f} "
                   f"pictures/s, {live.bytes / max(live.pictures, 1) / 1024:.0f} KiB each" if watched else ""))
        alone, with_page = figures
        print("ratio           " + "  ".join(f"{what} {second / first:.3f}" for what, first, second in zip(
            ("decoded", "shown", "recorder"), alone, with_page)))


main()
