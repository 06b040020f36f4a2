"""The fixtures, in sessions of pytest of their own."""

import pathlib

import pytest

WALL = "nvrec wall --layout 2x2 --loop --overlay on --control none --log -"


@pytest.fixture(name="session")
def _session(pytester, streams):
    """Runs tests in a session of their own, with the program in its ini file."""
    pytester.makeini(f"[pytest]\nvboard_program = {WALL} {' '.join(streams)}\n")

    def run(text, *options):
        pytester.makepyfile(text)
        return pytester.runpytest_subprocess("-p", "vboard.pytest_plugin", "-p", "no:cacheprovider", *options)

    return run


def test_boards_are_fresh_markers_have_programs_and_failures_are_shown(session, streams):
    result = session(f"""
        import pytest
        import vboard

        seen = []

        def test_one(board, recorder):
            board.wait_decoded(0, 3)
            assert recorder.board is board
            assert isinstance(board, vboard.Board)
            assert recorder.folder == recorder.log.parent
            board.fault("MI_VDEC_CreateChn")
            seen.append(board.board()["pid"])

        def test_another(board):
            assert board.state()["faults"]["list"] == []
            assert board.board()["pid"] not in seen and seen

        @pytest.mark.vboard("nvrec", "wall", "--layout", "1", "--loop", "--control", "none", {streams[1]!r}, board="single")
        def test_single(board):
            assert board.name == "single"
            assert "1" in board.board()["program"]
            assert board.wait_decoded(0, 1)["codec"] == "h265"
            assert False, "on purpose"
    """)
    result.assert_outcomes(passed=2, failed=1)
    result.stdout.fnmatch_lines(["*on purpose*", "*- vboard -*", "screen: */screen.png",
                                 "log: */recorder.log, which ends with:"])
    screen = next(line.split(": ", 1)[1] for line in result.stdout.lines if line.startswith("screen: "))
    assert pathlib.Path(screen).read_bytes().startswith(b"\x89PNG")


def test_the_command_line_has_the_last_word(session, streams):
    session("""
        def test_single(board):
            assert board.wait_decoded(0, 1)["codec"] == "h265"
    """, "--vboard-program", f"nvrec wall --loop --control none {streams[1]}").assert_outcomes(passed=1)


def test_without_a_program_it_is_asked_for(pytester):
    pytester.makepyfile("def test_it(board): pass")
    result = pytester.runpytest_subprocess("-p", "vboard.pytest_plugin")
    result.assert_outcomes(errors=1)
    result.stdout.fnmatch_lines(["*which program? Name one by --vboard-program*"])


def test_a_program_that_does_not_start_is_an_error_with_its_log(session):
    result = session("def test_it(board): pass", "--vboard-program", "no-such-program")
    result.assert_outcomes(errors=1)
    result.stdout.fnmatch_lines(["*StartFailed: vboard run ended with status 127*"])
