"""Requests, events and pictures over HTTP and WebSocket, and who is let in."""
import json
import socket
import time

from conftest import wait_until


def code(answer):
    return answer[0], answer[1]["error"]["code"]


def test_description_is_the_file(board):
    status, answer = board.ask("GET", "/api/1/description")
    assert status == 200 and answer["version"] == 1


def test_every_request_without_parameters_is_answered(board):
    description = board.ask("GET", "/api/1/description")[1]
    for request in description["requests"]:
        if request["name"] in ("power", "wait.quiet") or request["name"].startswith(("clock.", "wait.")):
            continue
        query = "?timeout=10" if "timeout" in request.get("parameters", {}) else ""
        status, content = board.ask(request["method"], "/api/1" + request["path"] + query, raw=True)
        known = [200] + [error["status"] for error in description["errors"].values()]
        assert status in known, request["name"]
        if status != 200:
            error = json.loads(content)["error"]
            assert error["code"] in description["errors"] and error["message"], request["name"]


def test_parameters_in_the_address_and_in_the_body(board):
    assert board.ask("POST", "/api/1/analog", {"input": 3, "lost": True}) == (200, {})
    assert board.ask("POST", "/api/1/analog?input=4&lost=on") == (200, {})
    inputs = board.ask("GET", "/api/1/state")[1]["analog"]["inputs"]
    assert [bool(one["lost"]) for one in inputs[3:6]] == [True, True, False]
    assert board.ask("DELETE", "/api/1/faults?call=board_open") == (200, {})


def test_a_request_with_an_empty_body_is_carried_out_once(board):
    assert board.ask("POST", "/api/1/clock/take")[0] == 200
    before = board.ask("GET", "/api/1/state")[1]["clock"]["us"]
    # http.client sends "Content-Length: 0" with it
    assert board.ask("POST", "/api/1/clock/step?by=40ms")[0] == 200
    assert board.ask("GET", "/api/1/state")[1]["clock"]["us"] == before + 40000
    assert board.ask("POST", "/api/1/clock/release")[0] == 200


def test_bad_requests_get_a_clear_answer(board):
    assert code(board.ask("POST", "/api/1/press", b"{")) == (400, "bad_json")
    assert code(board.ask("POST", "/api/1/press", b"[1]")) == (400, "bad_json")
    assert code(board.ask("POST", "/api/1/press", b"\xff\xfe")) == (400, "bad_json")
    assert code(board.ask("POST", "/api/1/press", b'{"button":' + b"[" * 5000)) == (400, "bad_json")
    nested = b'{"button":' + b"[" * 30000 + b"]" * 30000 + b"}"
    assert code(board.ask("POST", "/api/1/press", nested)) == (400, "bad_json")
    status, answer = board.ask("POST", "/api/1/faults", {"call": "MI_VDEC_StrtChn"})
    assert (status, answer["error"]["code"]) == (409, "refused")
    assert answer["error"]["message"].endswith('(did you mean "MI_VDEC_StartChn"?)')
    status, answer = board.ask("POST", "/api/1/fault", {})
    assert (status, answer["error"]["code"]) == (404, "not_found")
    for path, body, name in (("wait/idle", {"channel": 64}, "channel"), ("wait/idle", {"chanel": 1}, "chanel"),
                             ("faults", {"call": "board_open", "nth": 0}, "nth"), ("clock/step", {"by": -1}, "by"),
                             ("clock/step", {"by": 1e30}, "by"), ("ir", {"code": 2**32, "state": 0}, "code"),
                             ("press", {}, "button"), ("monitor", {"plug": "of"}, "plug")):
        status, answer = board.ask("POST", "/api/1/" + path, body)
        assert (status, answer["error"]["code"], answer["error"]["parameter"]) == (400, "bad_parameter", name)
    assert code(board.ask("GET", "/api/1/nowhere")) == (404, "not_found")
    assert code(board.ask("GET", "/api/2/state")) == (404, "unknown_version")
    assert code(board.ask("GET", "/api/state")) == (404, "unknown_version")
    assert code(board.ask("POST", "/api/1/state")) == (405, "wrong_method")
    assert board.headers["Allow"] == "GET"
    assert code(board.ask("PUT", "/api/1/faults", {})) == (405, "wrong_method")
    assert code(board.ask("GET", "/api/1/live")) == (405, "wrong_method")
    assert code(board.ask("POST", "/api/1/press", b" " * 70000)) == (413, "too_large")
    assert code(board.ask("POST", "/api/1/press", b" " * 5000000)) == (413, "too_large")
    assert code(board.ask("GET", "/api/1/screen?region=0,0,99999,2")) == (400, "bad_parameter")
    assert code(board.ask("POST", "/api/1/press", {"button": "no such button"}))[0] in (400, 409)
    assert board.ask("GET", "/api/1/state")[0] == 200


def test_token_is_wanted_everywhere_but_for_the_page(board):
    assert code(board.ask("GET", "/api/1/state", token=False)) == (401, "unauthorized")
    assert code(board.ask("GET", "/api/1/state?token=" + "0" * 32, token=False)) == (401, "unauthorized")
    for wrong in ("Bearer ", "Bearer " + board.token[:-1], "Basic " + board.token, board.token):
        assert code(board.ask("GET", "/api/1/state", headers={"Authorization": wrong})) == (401, "unauthorized")
    assert board.ask("GET", "/api/1/state?token=" + board.token, token=False)[0] == 200
    assert board.ask("GET", "/", token=False, raw=True)[0] == 200
    for path in ("/api/1/events", "/api/1/live", "/api/1/events?token=" + "f" * 32):
        assert board.websocket(path).status == 401


def test_foreign_host_and_origin_are_refused(board):
    own = f"127.0.0.1:{board.port}"
    for headers in ({"Host": "evil.example"}, {"Host": f"evil.example:{board.port}"}, {"Host": "127.0.0.1:1"},
                    {"Host": own, "Origin": "http://evil.example"}, {"Host": own, "Origin": "null"},
                    {"Host": own, "Origin": "https://" + own}, {"Host": own, "Origin": "http://127.0.0.1:1"}):
        assert code(board.ask("POST", "/api/1/press", {"button": "menu"}, headers=headers)) == (403, "forbidden")
        assert board.websocket("/api/1/events?token=" + board.token, **headers).status == 403
    for host in (own, f"localhost:{board.port}"):
        assert board.ask("GET", "/api/1/state", headers={"Host": host, "Origin": "http://" + host})[0] == 200


def test_files_stay_in_the_folder(board, tmp_path):
    (tmp_path / "out").symlink_to("/tmp")
    (tmp_path / "passwd").symlink_to("/etc/passwd")
    for file in ("../x", "/tmp/x", "a/../../x", "out/x", "passwd"):
        for path in ("trace/start", "record/start", "audio/record"):
            assert code(board.ask("POST", "/api/1/" + path, {"file": file})) == (403, "forbidden"), (path, file)
    assert board.ask("POST", "/api/1/trace/start", {"file": "calls.txt"})[1]["file"] == str(tmp_path / "calls.txt")
    assert board.ask("POST", "/api/1/trace/stop") == (200, {})
    assert (tmp_path / "calls.txt").exists()


def test_page_is_served_with_its_rules_and_nothing_beside_it(board):
    status, content = board.ask("GET", "/", raw=True)
    assert status == 200 and b"<!DOCTYPE html>" in content
    assert board.headers["Content-Type"].startswith("text/html")
    policy = board.headers["Content-Security-Policy"]
    assert policy.startswith("default-src 'self'; img-src 'self' blob: data:") and "frame-ancestors 'none'" in policy
    assert board.ask("GET", "/main.js", raw=True)[0] == 200
    assert board.headers["Content-Type"].startswith("text/javascript")
    for path in ("/../CMakeLists.txt", "/%2e%2e/etc/passwd", "//etc/passwd", "/index.html/x", "/nothing.js"):
        assert board.ask("GET", path, raw=True)[0] == 404, path


def test_pictures(board):
    status, png = board.ask("GET", "/api/1/screen", raw=True)
    assert status == 200 and png[:8] == b"\x89PNG\r\n\x1a\n"
    size = board.headers["X-Picture-Size"]
    width, height = map(int, size.split("x"))
    status, raw = board.ask("GET", "/api/1/screen?type=i420&region=9,9,33,33", raw=True)
    assert board.headers["X-Picture-Size"] == "34x34" and len(raw) == 34 * 34 * 3 // 2
    status, jpeg = board.ask("GET", "/api/1/screen?type=jpeg&width=320", raw=True)
    assert jpeg[:2] == b"\xff\xd8" and board.headers["X-Picture-Size"] == f"320x{320 * height // width}"


def test_a_narrow_part_does_not_become_a_picture_of_gigabytes(board):
    status, answer = board.ask("GET", "/api/1/screen?region=0,0,2,1080&width=3840")
    assert (status, answer["error"]["code"], answer["error"]["parameter"]) == (400, "bad_parameter", "width")
    assert board.ask("GET", "/api/1/screen?region=0,0,2,1080&width=16&type=jpeg", raw=True)[0] == 400
    assert board.ask("GET", "/api/1/screen?region=0,0,20,20&width=3840&type=jpeg", raw=True)[0] == 200


def test_events_come_as_they_are_subscribed(board):
    events = board.websocket("/api/1/events?token=" + board.token)
    assert events.status == 101
    events.send('{"subscribe": ["state", "refusal", "board"]}')
    assert events.event("state")["monitor"]["plugged"] is True
    begin = time.monotonic()
    for _ in range(5):
        events.event("state")
    assert 0.5 < time.monotonic() - begin < 5
    board.ask("POST", "/api/1/power", {"to": "cycle"})
    while events.event("board")["starts"] != 2:
        pass
    for wrong, expected in (("{", "bad_json"), ('{"subscribe": ["stat"]}', "bad_parameter"), ("{}", "bad_parameter"),
                            ('{"subscribe": [1]}', "bad_parameter")):
        events.send(wrong)
        assert events.event("error")["code"] == expected
    events.send('{"subscribe": []}')


def test_calls_are_told_once_somebody_asks(board):
    assert board.ask("GET", "/api/1/calls")[1]["calls"] == []
    events = board.websocket("/api/1/events?token=" + board.token)
    events.send('{"subscribe": ["calls"]}')
    answer = board.ask("GET", "/api/1/calls?limit=5&failed=on&name=MI_&channel=3")[1]
    assert answer["calls"] == [] and answer["lost"] == 0


def test_live_pictures_come_when_they_are_asked_for(board):
    live = board.websocket("/api/1/live?width=320&rate=30&token=" + board.token)
    assert live.status == 101
    live.send("next")
    assert live.receive()[:2] == b"\xff\xd8"
    begin = time.monotonic()
    live.send("next")
    live.receive()  # nothing changes on the screen: the next one comes after a second
    assert 0.7 < time.monotonic() - begin < 5
    for wrong in ("width=0", "rate=31", "width=x", "rate="):
        assert board.websocket(f"/api/1/live?{wrong}&token={board.token}").status == 400


def test_clients_that_say_nothing_vanish_or_never_read(board):
    silent = [socket.create_connection(("127.0.0.1", board.port)) for _ in range(20)]
    half = socket.create_connection(("127.0.0.1", board.port))
    half.sendall(b"POST /api/1/press HTTP/1.1\r\nContent-Le")
    short = socket.create_connection(("127.0.0.1", board.port))
    short.sendall((f"POST /api/1/press HTTP/1.1\r\nHost: 127.0.0.1:{board.port}\r\nAuthorization: Bearer {board.token}"
                   "\r\nContent-Length: 100\r\n\r\n{").encode())
    for _ in range(20):
        gone = board.websocket("/api/1/live?token=" + board.token)
        gone.send("next")
        gone.close()
    unread = board.websocket("/api/1/events?token=" + board.token)
    unread.send('{"subscribe": ["state", "calls"]}')
    begin = time.monotonic()
    for _ in range(10):
        assert board.ask("GET", "/api/1/state")[0] == 200
    assert time.monotonic() - begin < 10
    # The silent ones are closed by the board.
    silent[0].settimeout(40)
    assert silent[0].recv(1) == b""


def test_thousands_of_sockets(board):
    many = []
    try:
        for _ in range(3000):
            many.append(socket.create_connection(("127.0.0.1", board.port), timeout=10))
    except OSError:
        pass
    assert len(many) > 1000
    request = f"GET /api/1/state HTTP/1.1\r\nHost: 127.0.0.1:{board.port}\r\n\r\n".encode()
    answer = b""
    for one in reversed(many):
        # The newest may not have got beyond the system's queue.
        try:
            one.settimeout(20)
            one.sendall(request)
            answer = one.recv(4096)
        except ConnectionError:
            continue
        if answer:
            break
    assert b" 503 " in answer.split(b"\r\n")[0], answer
    for one in many:
        one.close()
    assert wait_until(lambda: board.ask("GET", "/api/1/state", raw=True)[0] == 200)


def test_waits_hold_no_other_request_up(board):
    connections = []
    for _ in range(10):
        one = socket.create_connection(("127.0.0.1", board.port))
        body = b'{"timeout": 600000}'
        one.sendall((f"POST /api/1/wait/expired HTTP/1.1\r\nHost: 127.0.0.1:{board.port}\r\nAuthorization: Bearer "
                     f"{board.token}\r\nContent-Length: {len(body)}\r\n\r\n").encode() + body)
        connections.append(one)
    begin = time.monotonic()
    assert board.ask("GET", "/api/1/state")[0] == 200
    assert time.monotonic() - begin < 5
    assert code(board.ask("POST", "/api/1/wait/expired", {"timeout": 50})) == (408, "timed_out")


def test_program_that_ends_while_the_page_is_open(board):
    live = board.websocket("/api/1/live?token=" + board.token)
    live.send("next")
    live.receive()
    events = board.websocket("/api/1/events?token=" + board.token)
    events.send('{"subscribe": ["state"]}')
    events.event("state")
    live.send("next")
    board.process.terminate()
    assert board.end() == 0
