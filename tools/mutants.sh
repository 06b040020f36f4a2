#!/bin/sh
# Changes the library's sources a little and sees whether a test notices.
#
#   tools/mutants.sh SEED COUNT [src/SUBSYSTEM or file...]
#
# Draws COUNT mutants by the seed (a statement deleted, or a comparison, a constant or an argument
# changed), compiles each one and runs the unit and trace tests of its subsystem, every case in a
# process of its own. A line for each: killed (and by which case), survived, equivalent, timed out,
# or not compiled; those that do not compile, or compile to the same code, do not count. The same
# seed draws the same mutants while the sources stay.
#
# Exit status: 0 = all noticed, or listed in tools/mutants/equivalent.txt with the reason why no test
# can notice; 1 = an unlisted survivor, or a listed change that exists no more.
#
# The checkout is never edited: the tests are built in a scratch copy, which NVRHAL_MUTANTS_DIR keeps
# for the next run. The data tables of src/text are left out: their own test compares them with what
# they are made from. Needs the packages of the groups build and test. Not a part of ./test.sh.
exec python3 "$(dirname "$0")/mutants/mutants.py" "$@"
