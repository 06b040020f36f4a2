"""The methods of a board against the description, and what they send."""

import inspect
import json
import urllib.parse

import pytest

import vboard
from vboard.requests import Requests

SAMPLES = {"integer": 3, "number": 1.5, "string": "some", "boolean": True, "array": [0, 2, 64, 32],
           "string|integer": "menu"}


def of_type(parameter, description):
    """The parameter with what its type brings."""
    return {**description["types"].get(parameter.get("is"), {}), **parameter}


def sample(parameter):
    """A value that the parameter can have."""
    if "values" in parameter:
        return parameter["values"][-1]
    return max(parameter["minimum"], 3) if parameter["type"] == "integer" else SAMPLES[parameter["type"]]


def as_text(value):
    """A value as it stands in an address."""
    if isinstance(value, bool):
        return "true" if value else "false"
    return ",".join(map(str, value)) if isinstance(value, list) else str(value)


def test_every_request_is_a_method_with_its_parameters(description):
    names = {one["name"].replace(".", "_") for one in description["requests"]}
    assert names == {name for name, _ in inspect.getmembers(Requests, inspect.isfunction) if name[0] != "_"}
    assert len(names) > 40
    for request in description["requests"]:
        method = getattr(Requests, request["name"].replace(".", "_"))
        assert method.__doc__, request["name"]
        given = dict(inspect.signature(method).parameters)
        del given["self"]
        assert set(given) == set(request.get("parameters", {})), request["name"]
        for name, own in request.get("parameters", {}).items():
            full = of_type(own, description)
            default = full.get("default", None if full.get("optional") else inspect.Parameter.empty)
            assert given[name].default == default, (request["name"], name)


def test_every_method_sends_its_request(answers, description):
    board = vboard.Board(answers.url, "secret")
    for request in description["requests"]:
        values = {name: sample(of_type(own, description)) for name, own in request.get("parameters", {}).items()}
        getattr(board, request["name"].replace(".", "_"))(**values)
        method, address, headers, body = answers.asked.pop()
        parts = urllib.parse.urlsplit(address)
        assert (method, parts.path) == (request["method"], "/api/1" + request["path"])
        assert headers["Authorization"] == "Bearer secret"
        if method == "POST":
            assert json.loads(body) == values
            assert parts.query == ""
        else:
            assert dict(urllib.parse.parse_qsl(parts.query)) == {name: as_text(one) for name, one in values.items()}
            assert body == b""


def test_what_is_left_out_is_not_sent(answers):
    board = vboard.Board(answers.url, "secret")
    board.mouse(wheel=-1)
    assert json.loads(answers.asked.pop()[3]) == {"wheel": -1}
    board.calls()
    assert answers.asked.pop()[1] == "/api/1/calls?after=0&limit=200"
    board.calls(failed=False)
    assert answers.asked.pop()[1] == "/api/1/calls?after=0&limit=200&failed=false"


def test_times_have_units(answers):
    board = vboard.Board(answers.url, "secret")
    board.clock_step("40ms")
    assert json.loads(answers.asked.pop()[3]) == {"by": 40000}
    board.wait_idle(2, timeout="1.5s")
    assert json.loads(answers.asked.pop()[3]) == {"channel": 2, "timeout": 1500}
    board.rtc("2026-03-29T01:59:00Z")
    assert json.loads(answers.asked.pop()[3]) == {"seconds": 1774749540}


def test_results_are_dictionaries_and_pictures_bytes(answers):
    board = vboard.Board(answers.url, "secret")
    answers.body = b'{"us": 7}'
    assert board.clock_step(7) == {"us": 7}
    answers.body, answers.headers = b"\x89PNG", {"Content-Type": "image/png"}
    assert board.screen() == b"\x89PNG"


def test_refusals_are_exceptions(answers):
    board = vboard.Board(answers.url, "secret")
    answers.status = 400
    answers.body = b'{"error": {"code": "bad_parameter", "message": "no such button", "parameter": "button"}}'
    with pytest.raises(vboard.BoardError) as caught:
        board.press("mneu")
    assert (caught.value.code, caught.value.message, caught.value.parameter) == (
        "bad_parameter", "no such button", "button")
    assert str(caught.value) == "no such button (bad_parameter)"
    answers.status, answers.body = 408, b'{"error": {"code": "timed_out", "message": "not idle"}}'
    with pytest.raises(vboard.TimedOut):
        board.wait_idle(0)


@pytest.mark.parametrize("body", [b"", b"<html>", b"[]", b"null", b'{"error": 5}', b"\xff"])
def test_an_answer_that_is_none_is_an_exception_too(answers, body):
    answers.status, answers.body = 500, body
    with pytest.raises(vboard.BoardError) as caught:
        vboard.Board(answers.url, "secret").state()
    assert caught.value.code == "gone"


def test_a_board_that_has_ended_is_gone(answers):
    url = answers.url
    answers.server_close()
    with pytest.raises(vboard.BoardError) as caught:
        vboard.Board(url, "secret").state()
    assert caught.value.code == "gone"


def test_waiting_ends_when_it_holds_or_in_time(answers):
    board = vboard.Board(answers.url, "secret")
    turns = iter([0, None, "", "there"])
    assert board.wait_until(lambda: next(turns), interval_s=0) == "there"
    with pytest.raises(vboard.TimedOut):
        board.wait_until(lambda: False, timeout="20ms", interval_s=0.001)
    answers.body = b'{"decoders": [{"channel": 0, "decoded": 9}, {"channel": 1, "decoded": 3}]}'
    assert board.wait_decoded(1, 3)["channel"] == 1
    with pytest.raises(vboard.TimedOut):
        board.wait_decoded(1, 4, timeout="20ms")
