#!/bin/bash
# trace_page.sh VBOARD PAGE - vboard-trace(1) has the options that the commands' --help have, and no others.
set -uo pipefail
vboard=$1
page=$2

options_of_help() {
    for command in summary diff timeline; do
        "$vboard" trace $command --help | grep -oE '^  -[^ ]+' | tr -d ' ' | tr , '\n'
    done | grep -vxE -- '-h|--help' | sort -u
}
options_of_page() { grep -E '^\.It Fl' "$1" | grep -oE 'Fl (Fl )?[a-z\\-]+' | sed 's/\\//g; s/Fl Fl /--/; s/Fl /-/' | sort -u; }

[ "$(options_of_help | wc -l)" -ge 12 ] || { echo "vboard trace --help names too few options"; exit 1; }
diff <(options_of_help) <(options_of_page "$page") || exit 1
# An option that is gone from the page is noticed.
diff -q <(options_of_help) <(options_of_page <(sed '/by.-channel/d' "$page")) >/dev/null && { echo "nothing is noticed"; exit 1; }
echo "$(options_of_help | wc -l) options"
