"""Real recorders on real boards, started from Python."""

import os
import signal

import pytest

import vboard

WALL = ["nvrec", "wall", "--layout", "2x2", "--loop", "--overlay", "on", "--control", "none", "--log", "-"]


@pytest.fixture(scope="module", name="recorder")
def _recorder(tmp_path_factory, streams):
    folder = tmp_path_factory.mktemp("run")
    with vboard.run(*WALL, *streams, folder=folder) as started:
        yield started


def test_the_board_shows_what_the_cameras_send(recorder):
    board = recorder.board
    about = board.board()
    assert about["power"] == "on" and about["boot_reason"] == "power" and about["starts"] == 1
    assert about["name"] == board.name
    assert board.wait_decoded(0, 10)["codec"] == "h264"
    assert board.wait_decoded(1, 10)["codec"] == "h265"
    picture = board.picture(settled=True)
    assert (picture.width, picture.height) == (1920, 1080)
    # Two cameras fill the upper half of the grid.
    assert picture.mean_luma((100, 100, 700, 400)) > 30
    assert picture.mean_luma((100, 640, 700, 400)) < 40 # dark, with a quiet mark
    part = board.picture(region=[100, 100, 64, 32])
    assert (part.width, part.height) == (64, 32)


def test_the_screen_is_written_to_files(recorder, tmp_path):
    recorder.board.save_screen(tmp_path / "screen.png")
    recorder.board.save_screen(tmp_path / "screen.jpg", width=480)
    png = (tmp_path / "screen.png").read_bytes()
    assert png.startswith(b"\x89PNG\r\n\x1a\n")
    assert (int.from_bytes(png[16:20], "big"), int.from_bytes(png[20:24], "big")) == (1920, 1080)
    assert (tmp_path / "screen.jpg").read_bytes().startswith(b"\xff\xd8")


def test_a_key_changes_the_picture(recorder):
    board = recorder.board
    board.wait_decoded(0, 5)
    menu = [760, 540, 400, 200] # its lower half, over panes that nothing moves in
    shown = board.picture(region=menu)
    board.press("menu")
    board.wait_until(lambda: board.picture(region=menu).difference(shown) > 2)
    board.press("back")
    board.wait_until(lambda: board.picture(region=menu).difference(shown) < 1)


def test_the_monitors_plug_is_pulled(recorder):
    board = recorder.board
    board.monitor("off")
    assert board.state()["monitor"]["plugged"] is False
    assert board.picture().mean_luma() <= 17
    board.monitor("on")
    board.wait_until(lambda: board.state()["monitor"]["signal"])


def test_calls_have_their_fields_by_name(recorder):
    board = recorder.board
    sent = board.wait_until(lambda: board.calls(name="MI_VDEC_SendStream", channel=1)["calls"])[-1]
    fields = {field["name"]: field["value"] for field in sent["arguments"]}
    assert sent["channel"] == fields["channel"] == 1
    assert fields["stream"]["length"] > 0
    assert sent["failed"] is False and sent["result"] == "0"


def test_a_fault_is_counted_where_it_fires(recorder):
    board = recorder.board
    assert "MI_VDEC_GetChnStat" in board.fault_calls()["calls"]
    board.fault("MI_VDEC_SendStream", count=3)
    board.wait_until(lambda: board.state()["faults"]["fired"] == 3)
    board.fault_clear()
    assert board.state()["faults"]["list"] == []


def test_what_the_board_refuses_is_an_exception(recorder):
    with pytest.raises(vboard.BoardError) as caught:
        recorder.board.press("mneu")
    assert caught.value.code in ("bad_parameter", "refused")
    with pytest.raises(vboard.BoardError) as caught:
        recorder.board.analog(16)
    assert (caught.value.code, caught.value.parameter) == ("bad_parameter", "input")
    with pytest.raises(vboard.BoardError) as caught:
        recorder.board.trace_start("../trace.txt")
    assert caught.value.code == "forbidden"
    with pytest.raises(vboard.TimedOut):
        recorder.board.wait_expired(timeout="10ms")
    with pytest.raises(vboard.BoardError) as caught:
        vboard.Board(recorder.board.url, "0" * 32).state()
    assert caught.value.code == "unauthorized"


def test_a_trace_can_be_taken_apart(recorder, tmp_path):
    board = recorder.board
    path = board.trace_start("trace.txt")["file"]
    board.wait_until(lambda: os.path.getsize(path) > 20000)
    board.trace_stop()
    with open(path, encoding="utf-8") as file:
        lines = file.read().splitlines()
    assert lines and all(" ; thread " in line or " event " in line for line in lines)
    assert any(" MI_VDEC_SendStream 0 {length=" in line for line in lines)


def test_the_board_is_found_by_its_name(recorder):
    assert vboard.connect(recorder.board.name).board()["pid"] == recorder.board.board()["pid"]


def test_the_end_of_a_program(streams, tmp_path):
    with vboard.run(*WALL, *streams, folder=tmp_path, board="ending") as recorder:
        assert "ending" in vboard.running()
        recorder.board.wait_decoded(0, 1)
        assert not recorder.has_ended()
        assert recorder.stop() == 0
        assert recorder.has_ended()
        with pytest.raises(vboard.BoardError) as caught:
            recorder.board.state()
        assert caught.value.code == "gone"
    assert "ending" not in vboard.running()


def test_power_is_switched_off_and_on(streams, tmp_path):
    with vboard.run(*WALL, *streams, folder=tmp_path) as recorder:
        board = recorder.board
        first = board.board()["pid"]
        board.power("off")
        assert board.board()["power"] == "off"
        with pytest.raises(vboard.BoardError) as caught:
            board.press("menu")
        assert caught.value.code == "power_off"
        board.power("on")
        board.wait_until(lambda: board.board()["power"] == "on" and board.board()["pid"] != first)
        assert board.board()["starts"] == 2
        board.wait_decoded(0, 1, timeout="10s")


def test_a_program_that_does_not_start_is_told_with_its_log(tmp_path):
    with pytest.raises(vboard.StartFailed, match="ended with status 127"):
        vboard.run("no-such-program", folder=tmp_path)
    with pytest.raises(vboard.StartFailed, match="ended with status 125"):
        vboard.run("true", folder=tmp_path)
    with pytest.raises(vboard.StartFailed, match="no-such-vboard"):
        vboard.run("true", folder=tmp_path, vboard="no-such-vboard")


def test_a_signal_that_ends_the_program_is_its_status(streams, tmp_path):
    with vboard.run(*WALL, *streams, folder=tmp_path) as recorder:
        os.kill(recorder.board.board()["pid"], signal.SIGABRT)
        assert recorder.wait() == -signal.SIGABRT
