#!/bin/bash
# The legs of test.sh that take longer than a change can wait for: before a release. Their names are in test.sh.
cd "$(dirname "$0")/.." && exec ./test.sh --only "$(sed -n 's/^further_legs=//p' test.sh)"
