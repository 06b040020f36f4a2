"""vboard trace on traces of real recorders: one with a stepped clock, and a wall in real time."""

import collections
import json
import os
import subprocess

import pytest

import trace_events
import vboard


def tool(*words):
    """vboard trace: exit status, output, complaints."""
    done = subprocess.run([os.environ["VBOARD_PROGRAM"], "trace", *map(str, words)], capture_output=True, text=True,
                          timeout=60, check=False)
    return done.returncode, done.stdout, done.stderr


@pytest.fixture(scope="module", name="stepped")
def _stepped(tmp_path_factory):
    """Two runs of one program with a stepped clock, whose traces are the same."""
    if not os.environ.get("TRACE_PROGRAM"):
        pytest.skip("TRACE_PROGRAM is not set")
    folder = tmp_path_factory.mktemp("stepped")
    for name in ("a", "b"):
        subprocess.run([os.environ["TRACE_PROGRAM"], folder / name], check=True, capture_output=True, timeout=60)
    return folder


@pytest.fixture(scope="module", name="timed")
def _timed(tmp_path_factory, streams):
    """The trace of a wall of two cameras in real time, one decoder of which does not start again."""
    folder = tmp_path_factory.mktemp("timed")
    with vboard.run("nvrec", "wall", "--layout", "2x2", "--loop", "--control", "none", "--log", "-", *streams,
                    folder=folder) as recorder:
        board = recorder.board
        path = board.trace_start("trace.txt")["file"]
        board.wait_decoded(0, 10)
        board.fault("MI_VDEC_StartChn", count=0)
        board.press("1")
        board.wait_until(lambda: board.state()["faults"]["fired"] > 0)
        board.monitor("off")
        board.wait_until(lambda: os.path.getsize(path) > 20000)
        board.trace_stop()
    return path


def test_two_runs_are_the_same(stepped):
    assert tool("diff", stepped / "a", stepped / "b") == (0, "", "")
    assert tool("diff", "--by-channel", "--pts", stepped / "a", stepped / "b") == (0, "", "")


def test_a_changed_result_is_found(stepped, tmp_path):
    lines = (stepped / "a").read_text(encoding="utf-8").splitlines()
    at = next(at for at, line in enumerate(lines) if "MI_VDEC_StartChn 1 = 0" in line)
    lines[at] = lines[at].replace("= 0", "= 0xa0080005")
    other = tmp_path / "other"
    other.write_text("\n".join(lines) + "\n", encoding="utf-8")
    status, output, _ = tool("diff", stepped / "a", other)
    assert status == 1
    assert output.startswith(f"parts at {stepped / 'a'}:{at + 1} and {other}:{at + 1}\n")
    assert "  differs: result, 0 and 0xa0080005 (VDEC: absent)\n" in output
    status, output, _ = tool("diff", "--by-channel", stepped / "a", other)
    assert (status, output.splitlines()[0].split(" parts ")[0]) == (1, "VDEC 1")


def test_the_time_line_of_a_stepped_run(stepped, tmp_path):
    status, _, complaints = tool("timeline", stepped / "a", "-o", tmp_path / "out.json")
    assert (status, complaints) == (0, "")
    events = trace_events.load(tmp_path / "out.json")
    names = trace_events.row_names(events)
    shown = collections.Counter(names[event["pid"], event["tid"]] for event in events if event["ph"] == "i")
    assert shown["VDEC 1"] > 40 and shown["DISP 0 port 0"] > 3 and shown["/dev/fb0"] > 3 and shown["events"] == 8
    sends = [event for event in events if event["name"] == "MI_VDEC_SendStream"]
    assert len(sends) == 20
    assert all(event["args"]["channel"] == 1 and event["args"]["stream"]["length"] > 0 for event in sends)


def test_the_time_line_of_a_wall(timed, tmp_path):
    status, said, complaints = tool("timeline", timed, "-o", tmp_path / "out.json")
    assert (status, complaints) == (0, "")
    events = trace_events.load(tmp_path / "out.json")
    names = trace_events.row_names(events)
    bars = collections.Counter(names[event["pid"], event["tid"]] for event in events if event["ph"] == "X")
    assert bars["VDEC 0"] > 10 and bars["VDEC 1"] > 10
    assert sum(count for name, count in bars.items() if name.startswith("thread ")) == int(said.split(": ")[1].split()[0])
    failures = [event for event in events if event["ph"] == "i" and names[event["pid"], event["tid"]] == "failures"]
    assert any(event["name"].startswith("MI_VDEC_StartChn (VDEC ") for event in failures)
    assert {"remote", "plug"} <= {event["name"] for event in events if event["ph"] == "i"}
    counters = {event["name"] for event in events if event["ph"] == "C"}
    assert {"VDEC 0 sends/s", "VDEC 1 sent, kbit/s", "VDEC 0 backlog, bytes"} <= counters
    rates = [event["args"]["value"] for event in events if event["ph"] == "C" and event["name"] == "VDEC 0 sends/s"]
    assert max(rates) > 5


def test_the_summary_of_a_wall(timed):
    status, output, _ = tool("summary", "--json", timed)
    assert status == 0
    whole = json.loads(output)
    with open(timed, encoding="utf-8") as file:
        lines = file.read().splitlines()
    assert whole["calls"] + whole["events"] == len(lines)
    rows = {row["name"]: row for row in whole["by_call"]}
    sends = [line for line in lines if " MI_VDEC_SendStream " in line]
    durations = [int(line.rsplit(", ", 1)[1].split()[0]) for line in sends]
    assert rows["MI_VDEC_SendStream"]["count"] == len(sends) > 20
    assert rows["MI_VDEC_SendStream"]["total_us"] == sum(durations)
    assert rows["MI_VDEC_SendStream"]["max_us"] == max(durations)
    assert rows["MI_VDEC_StartChn"]["failures"][0]["result"] == "-1"


def test_a_trace_that_was_cut_off_is_read_up_to_there(timed, tmp_path):
    with open(timed, "rb") as file:
        text = file.read()
    cut = tmp_path / "cut"
    cut.write_bytes(text[:len(text) // 2])
    for command in (("summary", cut), ("timeline", cut, "-o", tmp_path / "out.json")):
        status, output, complaints = tool(*command)
        assert status == 0 and output
        assert complaints.endswith("cut off, the line has no end\n") and complaints.count("\n") == 1
    trace_events.load(tmp_path / "out.json")
