"""Fixtures for pytest: `recorder`, a program on a fresh board for each test, and `board`, that board.

    # pytest.ini
    [pytest]
    vboard_program = nvrec wall --layout 2x2 front.h264 yard.h265

    def test_the_menu_opens(board, recorder):
        board.press("menu")
        recorder.wait_log("menu")

The program is that of `--vboard-program`, or of `vboard_program` in the ini file. A test that wants it otherwise
says so:

    @pytest.mark.vboard("nvrec", "play", "monday.mp4", stepped=True)
    def test_playback(board): ...

Positional arguments take the place of the program, all others are options of vboard.run. The board's folder is the
test's tmp_path; the program runs where pytest was started. When a test fails, its report has the screen at that time and the program's log.
"""

import pathlib
import shlex

import pytest

from .errors import BoardError
from .recorder import run, tail

_RECORDER = pytest.StashKey()


def pytest_addoption(parser):
    """The options and ini values of the fixtures."""
    group = parser.getgroup("vboard", "a board in software")
    for name, about in (
        ("program", "command line of the program that the fixtures `board` and `recorder` run"),
        ("command", "the program vboard itself; by default VBOARD_PROGRAM, or the one of the path"),
        ("options", "options of vboard run for every test, as --listen 0"),
        ("start-timeout", "how long a program may take to start, as 20s"),
    ):
        group.addoption(f"--vboard-{name}", metavar=name.upper().replace("-", "_"), help=about)
        parser.addini(f"vboard_{name.replace('-', '_')}", about)


def pytest_configure(config):
    """The marker of tests that want another program or other options."""
    config.addinivalue_line(
        "markers", "vboard(*program, **options): the program of this test, and options of vboard.run")


def _setting(config, name):
    return config.getoption(f"--vboard-{name}") or config.getini(f"vboard_{name.replace('-', '_')}") or None


def _command(request):
    """Command line and options for a test."""
    marker = request.node.get_closest_marker("vboard")
    program = list(marker.args) if marker else []
    options = dict(marker.kwargs) if marker else {}
    if not program:
        program = shlex.split(_setting(request.config, "program") or "")
    if not program:
        pytest.fail("which program? Name one by --vboard-program, vboard_program in the ini file, or the marker vboard",
                    pytrace=False)
    options.setdefault("vboard", _setting(request.config, "command"))
    options.setdefault("start_timeout", _setting(request.config, "start-timeout") or "20s")
    options["options"] = [*shlex.split(_setting(request.config, "options") or ""), *options.get("options", ())]
    return program, options


@pytest.fixture
def recorder(request, tmp_path):
    """The program on a fresh board (vboard.Recorder); it is stopped after the test."""
    program, options = _command(request)
    options.setdefault("folder", tmp_path)
    options.setdefault("log", tmp_path / "recorder.log")
    with run(*program, **options) as started:
        request.node.stash[_RECORDER] = started
        yield started


@pytest.fixture
def board(recorder):  # pylint: disable=redefined-outer-name
    """The board of the program (vboard.Board)."""
    return recorder.board


def _save_screen(started):
    path = pathlib.Path(started.log).with_name("screen.png")
    try:
        started.board.save_screen(path)
        return str(path)
    except (BoardError, OSError) as error:
        return f"none: {error}"


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    """While the program still runs: what there is to see of a failure."""
    outcome = yield
    report = outcome.get_result()
    started = item.stash.get(_RECORDER, None)
    if started is None or call.when != "call" or not report.failed:
        return
    report.sections.append(
        ("vboard", f"screen: {_save_screen(started)}\nlog: {started.log}, which ends with:\n{tail(started.log)}"))
