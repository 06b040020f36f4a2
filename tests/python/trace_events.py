"""The trace-event format, as far as it can be checked without a viewer."""

import json
import numbers

NEEDS = {"X": ("ts", "dur", "tid", "cat"), "i": ("ts", "s", "tid", "cat"), "C": ("ts", "args"), "M": ("args",)}
NAMES_OF_METADATA = {"process_name", "process_sort_index", "thread_name", "thread_sort_index"}


def load(path):
    """The events of a file; an assertion fails when it is none of the format."""
    with open(path, encoding="utf-8") as file:
        whole = json.load(file)
    assert whole["displayTimeUnit"] in ("ms", "ns")
    events = whole["traceEvents"]
    assert isinstance(events, list)
    for event in events:
        check(event)
    check_rows(events)
    return events


def check(event):
    """One event: the fields that its kind needs, with the right types."""
    assert event["ph"] in NEEDS, event
    assert isinstance(event["name"], str) and event["name"], event
    assert isinstance(event["pid"], int), event
    for field in NEEDS[event["ph"]]:
        assert field in event, event
    for field in ("ts", "dur"):
        if field in event:
            assert isinstance(event[field], numbers.Number) and event[field] >= 0, event
    if "args" in event:
        assert isinstance(event["args"], dict), event
    if event["ph"] == "i":
        assert event["s"] in "tpg", event
    if event["ph"] == "M":
        assert event["name"] in NAMES_OF_METADATA, event
    if event["ph"] == "C":
        assert event["args"] and all(isinstance(value, numbers.Number) for value in event["args"].values()), event


def check_rows(events):
    """Every row has a name, and its bars lie beside or within one another."""
    processes = {event["pid"] for event in events if event["name"] == "process_name"}
    rows = {(event["pid"], event["tid"]) for event in events if event["name"] == "thread_name"}
    bars = {}
    for event in events:
        if event["ph"] in "Xi":
            assert event["pid"] in processes and (event["pid"], event["tid"]) in rows, event
        if event["ph"] == "X":
            bars.setdefault((event["pid"], event["tid"]), []).append((event["ts"], event["ts"] + event["dur"]))
    for row, spans in bars.items():
        spans.sort(key=lambda span: (span[0], -span[1]))
        open_ends = []
        for begin, end in spans:
            while open_ends and open_ends[-1] <= begin:
                open_ends.pop()
            assert not open_ends or end <= open_ends[-1], (row, begin, end)
            open_ends.append(end)
    for counter in {(event["pid"], event["name"]) for event in events if event["ph"] == "C"}:
        times = [event["ts"] for event in events if event["ph"] == "C" and (event["pid"], event["name"]) == counter]
        assert times == sorted(times), counter


def row_names(events):
    """Names of the rows, by process and thread."""
    return {(event["pid"], event["tid"]): event["args"]["name"] for event in events if event["name"] == "thread_name"}
