#!/bin/bash
# The C block of the README is the example without its heading line: same_as_readme.sh README EXAMPLE
set -euo pipefail
diff <(sed -n '/^```c$/,/^```$/p' "$1" | sed '1d;$d') <(tail -n +2 "$2" | sed '/./,$!d') &&
    [ -n "$(sed -n '/^```c$/p' "$1")" ]
