"""Times, pictures, and boards by the files that they leave."""

import datetime
import json
import os
import subprocess

import pytest

import vboard
from vboard import find, times


@pytest.mark.parametrize("value, us", [(5, 5), ("250us", 250), ("40ms", 40000), ("1.5s", 1500000), ("2m", 120000000),
                                       ("1h", 3600000000), (datetime.timedelta(seconds=3), 3000000), (None, None)])
def test_durations(value, us):
    assert times.microseconds(value) == us
    assert times.milliseconds(value) == (value if value in (5, None) else us // 1000)


@pytest.mark.parametrize("value", ["", "5", "5 ms", "-5ms", "ms", "5parsecs", [], 1.5])
def test_no_durations(value):
    with pytest.raises(ValueError):
        times.microseconds(value)


def test_points_in_time():
    assert times.seconds_since_1970(7) == 7
    assert times.seconds_since_1970("1970-01-02T00:00:00Z") == 86400
    assert times.seconds_since_1970("1970-01-02T01:00:00+01:00") == 86400
    assert times.seconds_since_1970(datetime.datetime(1970, 1, 2)) == 86400
    with pytest.raises(ValueError):
        times.seconds_since_1970("yesterday")


def grey(width, height, luma):
    """A picture of one brightness, without colour."""
    return vboard.Picture(width, height, bytes([luma]) * (width * height) + b"\x80" * (width * height // 2))


def test_pixels_of_a_picture():
    assert grey(4, 2, 16).pixel(3, 1) == (0, 0, 0)
    assert grey(4, 2, 235).pixel(0, 0) == (255, 255, 255)
    red = vboard.Picture(2, 2, bytes([81] * 4 + [90] + [240]))
    assert all(abs(one - other) <= 2 for one, other in zip(red.pixel(1, 1), (255, 0, 0)))
    assert red.luma(0, 1) == 81
    for x, y in ((-1, 0), (2, 0), (0, 2)):
        with pytest.raises(IndexError):
            red.pixel(x, y)


def test_pictures_are_compared_by_region():
    left = vboard.Picture(4, 2, bytes([20, 20, 90, 90] * 2) + b"\x80" * 4)
    right = grey(4, 2, 20)
    assert left.difference(left) == 0
    assert left.difference(right) == 50
    assert left.difference(right, region=(2, 0, 2, 2)) == 100
    assert left.difference(right, region=(0, 0, 2, 2)) == 0
    assert left.difference(right, tolerance=70) == 0
    assert left.mean_luma() == 55
    assert left.mean_luma((0, 0, 2, 1)) == 20
    for wrong in ((0, 0, 0, 1), (0, 0, 5, 1), (-1, 0, 2, 1)):
        with pytest.raises((IndexError, ValueError)):
            left.mean_luma(wrong)
    with pytest.raises(ValueError):
        left.difference(grey(2, 2, 20))
    with pytest.raises(ValueError):
        vboard.Picture(4, 2, b"short")


@pytest.fixture(name="runs")
def _runs(tmp_path, monkeypatch):
    """Writes the file of a board that runs, or seems to."""
    monkeypatch.setenv("XDG_RUNTIME_DIR", str(tmp_path))
    folder = tmp_path / "vboard"
    folder.mkdir(mode=0o700)

    def write(name, pid=None, text=None):
        made = {"name": name, "pid": pid or os.getpid(), "url": "http://127.0.0.1:1/", "token": "secret"}
        (folder / f"{name}.json").write_text(text if text is not None else json.dumps(made), encoding="utf-8")
        return folder

    return write


def test_the_only_board_needs_no_name(runs):
    runs("nvrec")
    assert vboard.connect().name == "nvrec"
    assert vboard.connect("nvrec").url == "http://127.0.0.1:1/"


def test_several_boards_need_a_name(runs):
    runs("nvrec")
    runs("other")
    assert sorted(vboard.running()) == ["nvrec", "other"]
    assert vboard.connect("other").name == "other"
    with pytest.raises(vboard.BoardNotFound, match="several boards run, name one: nvrec, other"):
        vboard.connect()
    with pytest.raises(vboard.BoardNotFound, match='no board "third" runs; there are: nvrec, other'):
        vboard.connect("third")


def test_boards_that_ended_or_left_no_whole_file_do_not_run(runs):
    with subprocess.Popen(["true"]) as ended:
        ended.wait()
    runs("gone", pid=ended.pid)
    runs("starting", text=json.dumps({"name": "starting", "pid": os.getpid(), "url": "", "token": ""}))
    runs("half", text='{"name": "ha')
    runs("empty", text="{}")
    runs("list", text="[]")
    with pytest.raises(vboard.BoardNotFound, match="no board runs"):
        vboard.connect()


def test_files_that_others_can_write_are_not_read(runs):
    runs("nvrec").chmod(0o777)
    assert not vboard.running()


def test_without_a_run_directory_there_is_one_of_the_user(monkeypatch):
    monkeypatch.delenv("XDG_RUNTIME_DIR", raising=False)
    assert str(find.run_directory()) == f"/tmp/vboard-{os.getuid()}"
