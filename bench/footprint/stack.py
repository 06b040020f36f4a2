#!/usr/bin/env python3
"""stack.py LIBRARY OBJECTS [LIMIT] - how much stack each public call uses.

OBJECTS is the directory with the compiler's call graphs of the library (gcc -fcallgraph-info=su: a file
NAME.ci beside every object). A call's use is the sum of the frames along the deepest chain of the library's
own functions; the C library, libqrencode and the platform are not counted. Exit status 1: a call uses LIMIT
bytes or more, a frame has no bound, functions call one another in a circle, or a function pointer is called
whose targets are not stated below.

Printed are the ten deepest calls with their chains, and the sum of what was looked at.
"""

import pathlib
import re
import subprocess
import sys

# Sources with a call through a pointer, and what is called there.
THROUGH_POINTER = {
    "core/log.cpp": "the application's function",
}

NODE = re.compile(r'node: \{ title: "([^"]+)" label: "([^"]*)"')
EDGE = re.compile(r'edge: \{ sourcename: "([^"]+)" targetname: "([^"]+)"')
FRAME = re.compile(r"\\n(\d+) bytes \(([^)]*)\)")


def read_graphs(directory):
    """Frames by function, callees by function, their sources, and functions whose frame has no bound."""
    frames, callees, sources, unbounded = {}, {}, {}, []
    graphs = sorted(pathlib.Path(directory).rglob("*.ci"))
    objects = {str(one.with_suffix("")) for one in pathlib.Path(directory).rglob("*.o")}
    for bare in sorted(objects - {str(one.with_suffix("")) for one in graphs}):
        sys.exit(f"stack.py: {bare}.o has no call graph: -fcallgraph-info=su, and no compiler cache")
    for graph in graphs:
        text = graph.read_text(encoding="utf-8")
        for title, label in NODE.findall(text):
            frame = FRAME.search(label)
            if not frame:
                continue  # declared there, defined elsewhere
            frames[title] = max(frames.get(title, 0), int(frame.group(1)))
            sources[title] = str(graph)
            if frame.group(2) not in ("static", "dynamic,bounded"):
                unbounded.append(title)
        for source, target in EDGE.findall(text):
            callees.setdefault(source, set()).add(target)
    return len(graphs), frames, callees, sources, unbounded


def plain(title):
    """The function's name without its file and its mangling."""
    name = title.rsplit(":", 1)[-1]
    parts, at = [], 0
    match = re.match(r"_ZN?L?", name)
    if not match:
        return name
    at = match.end()
    while digits := re.match(r"L?(\d+)", name[at:]):
        at += digits.end()
        parts.append(name[at : at + int(digits.group(1))])
        at += int(digits.group(1))
    return parts[-1] if parts else name


class Circle(Exception):
    pass


def deepest(title, frames, callees, known, path):
    """(bytes, chain) of the deepest chain from a function on."""
    if title in known:
        return known[title]
    if title not in frames:
        return 0, []
    if title in path:
        raise Circle(" -> ".join(plain(one) for one in path[path.index(title) :] + [title]))
    best = (0, [])
    for callee in sorted(callees.get(title, ())):
        if callee == "__indirect_call":
            continue
        below = deepest(callee, frames, callees, known, path + [title])
        best = max(best, below, key=lambda chain: chain[0])
    known[title] = (frames[title] + best[0], [title] + best[1])
    return known[title]


def exported(library):
    out = subprocess.run(["nm", "-D", "--defined-only", library], capture_output=True, check=True, text=True).stdout
    return sorted(line.split()[2] for line in out.splitlines() if line.split()[1] == "T" and not line.endswith(("_init", "_fini")))


def main():
    library, directory = sys.argv[1:3]
    limit = int(sys.argv[3]) if len(sys.argv) > 3 else None
    graphs, frames, callees, sources, unbounded = read_graphs(directory)
    problems = [f"{plain(title)}: its frame has no bound" for title in unbounded]
    for title in sorted(frames):
        stated = any(name in sources[title] for name in THROUGH_POINTER)
        if "__indirect_call" in callees.get(title, ()) and not stated:
            problems.append(f"{plain(title)}: calls through a pointer; what?")

    calls, known = [], {}
    for name in exported(library):
        if name not in frames:
            problems.append(f"{name}: not in the call graphs")
            continue
        try:
            calls.append((*deepest(name, frames, callees, known, []), name))
        except Circle as circle:
            problems.append(f"in a circle: {circle}")
    calls.sort(key=lambda call: (-call[0], call[2]))
    if limit is not None:
        problems += [f"{name}: {size} bytes" for size, _, name in calls if size >= limit]
    for size, chain, name in calls[:10]:
        print(f"{size:6} {name}: " + " > ".join(f"{plain(title)} {frames[title]}" for title in chain))
    median = calls[len(calls) // 2][0] if calls else 0
    print(f"{len(calls)} public calls, half of them within {median} bytes; {len(frames)} functions, {graphs} graphs")
    for problem in problems:
        print("stack.py: " + problem, file=sys.stderr)
    return 1 if problems or not calls else 0


sys.exit(main())
