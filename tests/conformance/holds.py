#!/usr/bin/env python3
"""holds.py PROGRAM [OPTIONS]: the board under the suite holds every point, and the report says so.

With a process for each point every one of them must have been tried; in one process only those that
need a fresh one may be left out.
"""
import json
import subprocess
import sys
import tempfile

program, options = sys.argv[1], sys.argv[2:]
with tempfile.NamedTemporaryFile(suffix=".json") as file:
    run = subprocess.run([program, "--json", file.name, *options], stdout=subprocess.PIPE, text=True)
    report = json.load(file)

listed = subprocess.run([program, "--list"], stdout=subprocess.PIPE, text=True, check=True).stdout.splitlines()
names = [point["name"] for point in report["points"]]
wrong = [point for point in report["points"] if point["verdict"] == "broken" or
         point["verdict"] == "not tried" and point["reason"] != "needs a process of its own"]
if "--one-process" not in options:
    wrong += [point for point in report["points"] if point["verdict"] == "not tried" and point not in wrong]

failures = []
if run.returncode != 0:
    failures.append(f"exit status {run.returncode}")
if wrong:
    failures.append("\n".join(f"{point['name']}: {point['verdict']}: {point['reason']}" for point in wrong))
if [line.split()[0] for line in listed] != names:
    failures.append("--list and the report name different points")
if len(set(names)) != len(names):
    failures.append("two points have the same name")
if report["held"] + report["broken"] + report["not_tried"] != len(names):
    failures.append("the sums do not add up")
print(run.stdout.splitlines()[-1] if not failures else run.stdout + "\n".join(failures))
sys.exit(1 if failures else 0)
