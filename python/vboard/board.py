"""A board that runs, driven over its requests."""

import http.client
import json
import time
import urllib.parse

from .errors import BoardError, TimedOut, error_of
from .picture import Picture
from .requests import Requests
from .times import milliseconds

# Beyond what a request waits for by itself: starting a program again takes a while.
_PATIENCE_S = 30


def _query(parameters):
    def text(value):
        if isinstance(value, bool):
            return "true" if value else "false"
        return ",".join(str(one) for one in value) if isinstance(value, (list, tuple)) else str(value)

    return urllib.parse.urlencode({name: text(value) for name, value in parameters.items()})


class Board(Requests):
    """A running board. Every request of its interface is a method; what it refuses is a BoardError.

    A board can be used by several threads at once.

    url: address of the page, without the token
    name: of the board
    """

    def __init__(self, url, token, name=None):
        parts = urllib.parse.urlsplit(url)
        self._host, self._port, self._token = parts.hostname, parts.port, token
        self.url, self.name = url, name

    def __repr__(self):
        return f"<Board {self.name or ''} at {self.url}>"

    # What several requests make, or what reads better than one.

    def picture(self, device=None, region=None, settled=False) -> Picture:
        """What the monitor shows, or a display device, as pixels to look at."""
        asked = {"device": device, "type": "i420", "region": region, "settled": settled}
        headers, body = self._exchange("GET", "/screen", asked)
        width, height = (int(number) for number in headers["X-Picture-Size"].lower().split("x"))
        return Picture(width, height, body)

    def save_screen(self, path, **options):
        """Write what the monitor shows to a file, PNG or (with the ending .jpg) JPEG. Options as of screen()."""
        kind = "jpeg" if str(path).lower().endswith((".jpg", ".jpeg")) else "png"
        picture = self.screen(type=kind, **options)
        with open(path, "wb") as file:
            file.write(picture)

    def wait_until(self, holds, timeout="5s", interval_s=0.05):
        """Until holds() gives something true, which is the result. TimedOut after so much real time."""
        end = time.monotonic() + milliseconds(timeout) / 1000
        while True:
            found = holds()
            if found:
                return found
            if time.monotonic() >= end:
                raise TimedOut(f"{getattr(holds, '__name__', 'the condition')} did not hold within {timeout}")
            time.sleep(interval_s)

    def wait_decoded(self, channel, pictures, timeout="5s"):
        """Until a decoder has decoded so many pictures since it was created, or more."""
        def decoded():
            for decoder in self.state()["decoders"]:
                if decoder["channel"] == channel and decoder["decoded"] >= pictures:
                    return decoder
            return None

        return self.wait_until(decoded, timeout)

    # How requests are sent.

    def _ask(self, request, method, path, parameters):
        headers, body = self._exchange(method, path, parameters)
        if not headers.get("Content-Type", "").startswith("application/json"):
            return body
        return json.loads(body)

    def _exchange(self, method, path, parameters):
        given = {name: value for name, value in parameters.items() if value is not None}
        patience = _PATIENCE_S + given.get("timeout", 0) / 1000
        address, body = "/api/1" + path, None
        headers = {"Authorization": f"Bearer {self._token}"}
        if method == "POST":
            body = json.dumps(given).encode()
            headers["Content-Type"] = "application/json"
        elif given:
            address += "?" + _query(given)
        # A connection each: the board may be started again in between, and threads need no lock.
        connection = http.client.HTTPConnection(self._host, self._port, timeout=patience)
        try:
            connection.request(method, address, body, headers)
            answer = connection.getresponse()
            received = answer.read()
        except (OSError, http.client.HTTPException) as error:
            raise BoardError("gone", f"{self.url} does not answer: {error}") from error
        finally:
            connection.close()
        if answer.status != 200:
            raise error_of(_json_or_none(received), answer.status)
        return answer.headers, received


def _json_or_none(text):
    try:
        return json.loads(text)
    except ValueError:
        return None
