"""Running boards for the tests of `vboard run` and `vboard ctl`: plain HTTP, without the package."""
import http.client
import json
import os
import pathlib
import socket
import struct
import subprocess
import time

import pytest

VBOARD = os.environ["VBOARD"]
PROGRAM = os.environ["VBOARD_PROGRAM"]
ON_BOARD = os.environ["VBOARD_ON_BOARD"]
MINUTE = 60


class Run:
    """A `vboard run` with its program."""

    def __init__(self, run_directory, program, options=(), **popen):
        self.environment = dict(os.environ, XDG_RUNTIME_DIR=str(run_directory))
        command = [VBOARD, "run", *options, "--", *map(str, program)]
        self.process = subprocess.Popen(command, env=self.environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, text=True, bufsize=1, **popen)
        self.board_folder = pathlib.Path(run_directory) / "vboard"

    def wait_for_page(self):
        """The first line on standard error is the page's address."""
        line = self.process.stderr.readline()
        assert line.startswith("vboard: the board's page is http://"), line
        address = line.split()[-1]
        self.token = address.split("token=")[1]
        self.port = int(address.split("/")[2].split(":")[1])
        return self

    def wait_for_line(self, wanted):
        for line in self.process.stdout:
            if wanted in line:
                return line
        raise AssertionError(f"no line with {wanted!r}")

    def ask(self, method, path, body=None, token=True, headers=None, raw=False):
        """(status, JSON) of a request; `body` is JSON unless it is bytes."""
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=MINUTE)
        sent = dict(headers or {})
        if token:
            sent.setdefault("Authorization", "Bearer " + self.token)
        if body is not None and not isinstance(body, bytes):
            body = json.dumps(body).encode()
        connection.request(method, path, body, sent)
        answer = connection.getresponse()
        content = answer.read()
        self.headers = answer.headers
        connection.close()
        return answer.status, content if raw else json.loads(content)

    def ctl(self, *words, **run):
        return subprocess.run([VBOARD, "ctl", *words], env=self.environment, capture_output=True, text=True,
                              timeout=MINUTE, **run)

    def websocket(self, path, **headers):
        return WebSocket(self.port, path, headers)

    def end(self, timeout=MINUTE):
        return self.process.wait(timeout)


class WebSocket:
    """As little of RFC 6455 as the tests need."""

    def __init__(self, port, path, headers):
        self.socket = socket.create_connection(("127.0.0.1", port), timeout=20)
        lines = {"Host": f"127.0.0.1:{port}", "Upgrade": "websocket", "Connection": "Upgrade",
                 "Sec-WebSocket-Key": "dGhlIHNhbXBsZSBub25jZQ==", "Sec-WebSocket-Version": "13", **headers}
        request = f"GET {path} HTTP/1.1\r\n" + "".join(f"{name}: {value}\r\n" for name, value in lines.items())
        self.socket.sendall(request.encode() + b"\r\n")
        self.bytes = b""
        while b"\r\n\r\n" not in self.bytes:
            part = self.socket.recv(65536)
            if not part:
                break
            self.bytes += part
        head, _, self.bytes = self.bytes.partition(b"\r\n\r\n")
        self.status = int(head.split()[1])

    def send(self, text):
        data = text.encode()
        length = bytes([0x80 | len(data)]) if len(data) < 126 else b"\xfe" + struct.pack(">H", len(data))
        self.socket.sendall(b"\x81" + length + bytes(4) + data)

    def take(self, count):
        while len(self.bytes) < count:
            part = self.socket.recv(65536)
            if not part:
                raise EOFError
            self.bytes += part
        taken, self.bytes = self.bytes[:count], self.bytes[count:]
        return taken

    def receive(self):
        """The next message, as bytes; control frames are passed over."""
        while True:
            first, second = self.take(2)
            length = second & 127
            if length == 126:
                (length,) = struct.unpack(">H", self.take(2))
            elif length == 127:
                (length,) = struct.unpack(">Q", self.take(8))
            content = self.take(length)
            if first & 15 in (1, 2):
                return content

    def event(self, name):
        while True:
            message = json.loads(self.receive())
            if message["event"] == name:
                return message["data"]

    def close(self):
        self.socket.close()


@pytest.fixture
def run_board(tmp_path):
    """run_board(program, options): a `vboard run` that is ended with the test."""
    runs = []

    def start(program, options=(), **popen):
        run = Run(tmp_path, program, ("--folder", str(tmp_path), *options), **popen)
        runs.append(run)
        return run

    yield start
    for run in runs:
        if run.process.poll() is None:
            run.process.kill()
        run.process.communicate()


@pytest.fixture
def board(run_board):
    """A board whose program has a picture on the screen, and waits."""
    run = run_board([ON_BOARD, "wait"]).wait_for_page()
    run.wait_for_line("waits")
    return run


@pytest.fixture
def program():
    """A program that is not linked with the board."""
    return PROGRAM


@pytest.fixture
def on_board():
    """One that is."""
    return ON_BOARD


def wait_until(condition, seconds=20):
    """Real processes: looked at again and again."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if condition():
            return True
        time.sleep(0.02)
    return False
