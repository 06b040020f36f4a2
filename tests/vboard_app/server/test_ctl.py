"""`vboard ctl`: verbs, options, what it prints, its exit status; and the completion of bash."""
import json
import os
import pathlib
import subprocess

from conftest import VBOARD

COMPLETION = pathlib.Path(__file__).parents[3] / "apps/vboard/ctl/vboard.bash"


def refused(answer, status, words):
    assert answer.returncode == status, answer
    assert answer.stdout == ""
    assert answer.stderr.startswith("vboard ctl: ") and answer.stderr.count("\n") == 1, answer.stderr
    assert words in answer.stderr, answer.stderr


def test_verbs_do_what_they_say(board, tmp_path):
    for words in (["press", "menu"], ["monitor", "off"], ["fault", "MI_VDEC_StartChn", "1", "1", "-1"],
                  ["clock", "take"], ["analog", "3", "--lost", "on"], ["rtc", "2026-03-29T01:59:00Z"],
                  ["mouse", "10", "20", "--wheel=-1"], ["panel", "menu"], ["hold", "up"], ["release"]):
        answer = board.ctl(*words)
        assert (answer.returncode, answer.stdout, answer.stderr) == (0, "", ""), words
    before = json.loads(board.ctl("state", "--json").stdout)
    assert before["monitor"]["plugged"] is False and before["clock"]["taken"] is True
    assert before["faults"]["list"][0]["call"] == "MI_VDEC_StartChn" and before["faults"]["list"][0]["code"] == -1
    assert bool(before["analog"]["inputs"][3]["lost"]) is True
    stepped = json.loads(board.ctl("--json", "clock", "step", "40ms").stdout)
    assert stepped["us"] == before["clock"]["us"] + 40000
    assert board.ctl("clock", "release").returncode == 0
    assert board.ctl("fault", "clear").returncode == 0
    assert json.loads(board.ctl("state", "--json").stdout)["faults"]["list"] == []


def test_pictures_are_written_as_their_ending_says(board, tmp_path):
    for name, begin in (("a.png", b"\x89PNG"), ("a.jpg", b"\xff\xd8"), ("a.i420", b"")):
        assert board.ctl("shot", name, "--region", "0,0,64,32", cwd=tmp_path).returncode == 0
        content = (tmp_path / name).read_bytes()
        assert content.startswith(begin) and len(content) > 0
    assert len((tmp_path / "a.i420").read_bytes()) == 64 * 32 * 3 // 2
    refused(board.ctl("shot", "a.gif"), 2, "ends neither in .png")
    refused(board.ctl("shot"), 2, "wants a file")
    refused(board.ctl("shot", "/nowhere/a.png"), 1, "cannot be written")


def test_state_is_a_table_with_units(board):
    text = board.ctl("state").stdout
    assert "plugged yes" in text and " MB" in text
    inputs = text[text.index("inputs"):].splitlines()
    assert len(inputs) >= 17 and "input" in inputs[1] and "lost" in inputs[1]
    assert "vboard_on_board" in board.ctl("list").stdout
    assert json.loads(board.ctl("list", "--json").stdout)[0]["pid"] == board.process.pid


def test_mistakes_are_told_with_what_was_meant(board):
    refused(board.ctl("pres", "menu"), 2, 'there is no verb "pres" (did you mean "press"?)')
    refused(board.ctl("clock"), 2, "take, release, step, picture")
    refused(board.ctl("clock", "stp"), 2, "clock step")
    refused(board.ctl("monitor", "of"), 2, 'did you mean "off"?')
    refused(board.ctl("monitor"), 2, '"plug" is missing')
    refused(board.ctl("press", "menu", "twice"), 2, '"twice" is left over')
    refused(board.ctl("analog", "3", "--lots", "on"), 2, 'did you mean "lost"?')
    refused(board.ctl("analog", "16"), 2, "0 to 15")
    refused(board.ctl("clock", "step", "40x"), 2, "a duration as 40ms or 2s")
    refused(board.ctl("press", "meun"), 1, "meun")
    refused(board.ctl("clock", "step", "1s"), 1, "")
    refused(board.ctl("--board", "vboard_on_bord", "state"), 1, 'did you mean "vboard_on_board"?')
    refused(board.ctl("--board"), 2, "wants a value")
    refused(board.ctl(), 2, "which verb?")


def test_without_a_board_it_says_so(tmp_path):
    environment = dict(os.environ, XDG_RUNTIME_DIR=str(tmp_path))
    answer = subprocess.run([VBOARD, "ctl", "state"], env=environment, capture_output=True, text=True, timeout=60)
    refused(answer, 1, "no board runs")


def test_help_has_every_verb(board):
    text = board.ctl("--help").stdout
    for request in json.loads(board.ctl("description").stdout)["requests"]:
        assert "\n  " + request["verb"] in text, request["verb"]
        one = board.ctl(*request["verb"].split(), "--help")
        assert one.returncode == 0 and one.stdout.startswith("usage: vboard ctl " + request["verb"])
        for parameter in request.get("parameters", {}):
            assert parameter.upper() in one.stdout or "--" + parameter in one.stdout, (request["verb"], parameter)


def complete(board, folder, *words):
    """What bash offers for the last word."""
    script = f"""source {COMPLETION}
        COMP_WORDS=({' '.join(f"'{word}'" for word in words)}); COMP_CWORD={len(words) - 1}
        _vboard; printf '%s\\n' "${{COMPREPLY[@]}}" """
    environment = dict(board.environment, PATH=str(pathlib.Path(VBOARD).parent) + ":" + os.environ["PATH"])
    answer = subprocess.run(["bash", "-c", script], env=environment, cwd=folder, capture_output=True, text=True,
                            timeout=60)
    assert answer.stderr == ""
    return [word for word in answer.stdout.split("\n") if word]


def test_completion(board, tmp_path):
    (tmp_path / "calls.txt").touch()
    (tmp_path / "cameras").mkdir()
    assert set(complete(board, tmp_path, "vboard", "")) == {"run", "ctl", "test", "trace"}
    assert complete(board, tmp_path, "vboard", "ctl", "mon") == ["monitor"]
    assert set(complete(board, tmp_path, "vboard", "ctl", "monitor", "o")) == {"on", "off"}
    assert "step" in complete(board, tmp_path, "vboard", "ctl", "clock", "s")
    assert "menu" in complete(board, tmp_path, "vboard", "ctl", "press", "me")
    assert "volume-down" in complete(board, tmp_path, "vboard", "ctl", "panel", "volume-d")
    assert complete(board, tmp_path, "vboard", "ctl", "analog", "3", "--lo") == ["--lost"]
    assert complete(board, tmp_path, "vboard", "ctl", "fault", "MI_VDEC_StartC") == ["MI_VDEC_StartChn"]
    assert set(complete(board, tmp_path, "vboard", "ctl", "trace", "start", "ca")) == {"calls.txt", "cameras"}
    assert complete(board, tmp_path, "vboard", "ctl", "--board", "vb") == ["vboard_on_board"]
    assert complete(board, tmp_path, "vboard", "run", "--no") == ["--no-reboot"]
    assert "cameras" in complete(board, tmp_path, "vboard", "run", "--", "./x", "cam")
