#!/usr/bin/env python3
"""breaks.py PROGRAM LIBRARY POINT: with the library in front of the board the suite calls the point broken.

The exit status is 1, the table and the report name the point and the calls that showed it, and points
of another area hold.
"""
import json
import os
import subprocess
import sys
import tempfile

program, library, wanted = sys.argv[1:]
environment = dict(os.environ, LD_PRELOAD=library)
with tempfile.NamedTemporaryFile(suffix=".json") as file:
    run = subprocess.run([program, "--json", file.name, "--only", wanted.split(".")[0] + ".*"], env=environment,
                         stdout=subprocess.PIPE, text=True)
    report = json.load(file)
broken = {point["name"]: point for point in report["points"] if point["verdict"] == "broken"}
held = [point for point in report["points"] if point["verdict"] == "held"]
problems = []
if run.returncode != 1:
    problems.append(f"exit status {run.returncode}, expected 1")
if wanted not in broken:
    problems.append(f"{wanted} is not called broken")
elif not any("MI_VDEC_SendStream" in line for line in broken[wanted]["record"]):
    problems.append("the calls that showed it are not in the report")
if f"broken: {wanted}" not in run.stdout:
    problems.append("the table does not name it")
if len(held) < len(broken):
    problems.append(f"one broken contract breaks {len(broken)} points")
print("\n".join(problems) if problems else f"broken: {', '.join(broken)}")
sys.exit(1 if problems else 0)
