#!/bin/bash
# pages_have_options.sh NVREC DIRECTORY - the manual page of every command lists the options that the command's
# --help lists, and no others; every command has a page, and nvrec(1) names it.
#
# Reads the page as it is shown, so that it does not depend on how pages are made. At the end it takes an
# option out of a page, and puts one in, to see that it would have noticed.
set -uo pipefail
nvrec=$1
pages=$2
command -v mandoc >/dev/null || { echo "mandoc is missing"; exit 77; }
bad=0

shown() { mandoc -T ascii "$1" | sed 's/.\x08//g'; }

# Of "  -l,--layout TEXT" in a help text: each on a line.
options_of_help() { "$nvrec" "$@" --help | grep -oE '^  -[^ ]+' | tr -d ' ' | tr , '\n' | sort; }

# Of "     -l layout, --layout layout" in a page's list of options.
options_of_page() { shown "$1" | sed -n '/^OPTIONS/,/^[A-NP-Z]/p' | grep -E '^ {5}-' | grep -oE '(^ +|, )--?[a-zA-Z][a-z-]*' | tr -d ' ,' | sort; }

compare() { # page, command...
    local page=$1
    shift
    diff <(options_of_help "$@") <(options_of_page "$page") | sed -n 's/^</not in the page:/p; s/^>/not an option:/p'
}

commands=$("$nvrec" --help | sed -n '/^Subcommands:/,$s/^  \([a-z]*\) .*/\1/p')
[ "$(wc -w <<<"$commands")" -ge 6 ] || { echo "nvrec --help names too few commands: $commands"; exit 1; }
for command in "" $commands; do
    page=$pages/nvrec${command:+-$command}.1
    [ -f "$page" ] || { echo "nvrec $command has no page"; bad=$((bad + 1)); continue; }
    # Word splitting is meant: nvrec itself is no command.
    told=$(compare "$page" $command)
    [ -z "$told" ] || { echo "$page: $told"; bad=$((bad + 1)); }
    [ -z "$command" ] || grep -q "^\.Xr nvrec-$command 1" "$pages/nvrec.1" ||
        { echo "nvrec(1) does not name nvrec-$command(1)"; bad=$((bad + 1)); }
done

changed=$(mktemp)
trap 'rm -f "$changed"' EXIT
sed '/^\.It .*Fl Fl loop/d' "$pages/nvrec-wall.1" >"$changed"
[ "$(compare "$changed" wall)" = "not in the page: --loop" ] || { echo "a missing option is not noticed"; bad=$((bad + 1)); }
sed 's/^\.It Fl Fl loop/.It Fl Fl loop , Fl Fl again/' "$pages/nvrec-wall.1" >"$changed"
[ "$(compare "$changed" wall)" = "not an option: --again" ] || { echo "an invented option is not noticed"; bad=$((bad + 1)); }
echo "$(wc -w <<<"$commands") commands, $bad complaints"
exit $((bad > 0))
