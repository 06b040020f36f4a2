#!/bin/sh
# Runs a conformance suite under every mutant of a platform, and sees whether it names what is broken.
#
#   tools/conformance_mutants.sh [--jobs N] [--only NAME] [--limit SECONDS] MUTANT_DIR SUITE [ARGUMENT...]
#
# MUTANT_DIR holds the mutants that the target conformance-mutants built; SUITE is a program that is linked
# to a platform's shared object, run once without a mutant and then once under each with the arguments and
# --json FILE, where it leaves its points with their names and verdicts.
#
# A line for each mutant: the points that broke under it and not without it, and whether one that
# tests/conformance/expected_points.txt expects is among them. A mutant without expected points is "not
# mapped", and counts as not named. So does one under which the suite hangs (limit: 180 s) or leaves no
# report.
#
# Exit status: 0 = at least 48 of 50 named (NVRHAL_MUTANTS_NEEDED), or the one of --only; 1 = fewer;
# 2 = the suite does not hold without a mutant, or cannot be run.
exec python3 "$(dirname "$0")/conformance/run_mutants.py" "$@"
