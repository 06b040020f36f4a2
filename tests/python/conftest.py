"""What the tests of the package share. CTest gives the places of what was built by variables."""

import json
import os
import pathlib
import sys
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "python"))

pytest_plugins = ["pytester", "vboard.pytest_plugin"]


class Answers(ThreadingHTTPServer):
    """A server that notes what is asked, and answers what it was told to."""

    daemon_threads = True

    def __init__(self):
        super().__init__(("127.0.0.1", 0), _Handler)
        self.asked = []  # (method, path with query, headers, body)
        self.status, self.headers, self.body = 200, {"Content-Type": "application/json"}, b"{}"

    @property
    def url(self):
        """As a board's file has it."""
        return f"http://127.0.0.1:{self.server_port}/"


class _Handler(BaseHTTPRequestHandler):
    def _answer(self):
        size = int(self.headers.get("Content-Length", 0))
        self.server.asked.append((self.command, self.path, self.headers, self.rfile.read(size)))
        self.send_response(self.server.status)
        for name, value in self.server.headers.items():
            self.send_header(name, value)
        self.send_header("Content-Length", str(len(self.server.body)))
        self.end_headers()
        self.wfile.write(self.server.body)

    do_GET = do_POST = do_DELETE = _answer

    def log_message(self, *_):
        pass


@pytest.fixture
def answers():
    """A server in a board's place."""
    server = Answers()
    thread = threading.Thread(target=server.serve_forever, args=(0.01,))
    thread.start()
    yield server
    server.shutdown()
    thread.join()
    server.server_close()


@pytest.fixture(scope="session")
def description():
    """The description of the requests."""
    return json.loads((ROOT / "apps/vboard/api/v1.json").read_text(encoding="utf-8"))


@pytest.fixture(scope="session")
def streams():
    """Two cameras: H.264 and H.265, 640 x 360."""
    folder = os.environ.get("STREAM_DIR")
    if not folder:
        pytest.skip("STREAM_DIR is not set: CTest sets it, and the path to the programs that were built")
    return [f"{folder}/h264_640x360", f"{folder}/h265_640x360"]
