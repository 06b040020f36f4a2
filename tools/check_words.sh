#!/bin/bash
# Keep words out that were given up: those of the first column of the table in the decision page.
#
#   tools/check_words.sh
#
# Looks at the sources, the scripts, the documentation and their file names. A word counts as a part
# of a snake_case or CamelCase name too, and in its plural and past; "word()" counts only as a
# function's name. The page itself, the changelog and options that are kept ("--word") do not count.
set -uo pipefail
cd "$(dirname "$0")/.."

page=docs/decisions/0008-names-of-the-field.md
words=() calls=()
while read -r old; do
    case $old in
    *'()') calls+=("${old%()}") ;;
    *) words+=("$old") ;;
    esac
done < <(sed -nE '/^\| old \|/,/^$/s/^\| ([^|]+) \|.*/\1/p' $page | grep -vxE 'old|-+')
[ ${#words[@]} -gt 0 ] && [ ${#calls[@]} -gt 0 ] || { echo "words: $page has no table of them" >&2; exit 1; }

either() { local IFS='|'; echo "$*"; }
pattern="(^|[^a-z])(($(either "${words[@]}"))(s|es|ed|ing)?|($(either "${calls[@]}"))[[:space:]]*\()([^a-z]|$)"

# Names taken apart into lower-case words, a blank before a bracket left as it is.
apart() { sed -E 's/--[a-z][a-z-]*//g; s/([a-z0-9])([A-Z])/\1 \2/g; s/[_-]/ /g' | tr '[:upper:]' '[:lower:]'; }

# Few files hold any of the words at all: only these are taken apart.
suspects() {
    local loose
    loose=$(either "${words[@]// /[ _-]?}" "${calls[@]}")
    {
        find "${places[@]}" -type f "${kinds[@]}" -print0 | xargs -0 grep -liE "$loose"
        find "${places[@]}" -type f "${kinds[@]}" | grep -iE "$loose"
    } | sort -u
}
places=(README.md ARCHITECTURE.md demo.sh test.sh docs include src platform apps conformance examples tests tools bench
    cmake debian python)
kinds=(\( -name '*.md' -o -name '*.h' -o -name '*.c' -o -name '*.cpp' -o -name '*.sh' -o -name '*.py' -o -name '*.cmake'
    -o -name '*.txt' -o -name '*.js' -o -name '*.html' -o -name '*.css' -o -name '*.1' -o -name '*.7' -o -name '*.yaml'
    -o -name '*.toml' -o -name '*.json' -o -name '*.inc' \) ! -name check_words.sh ! -path "$page")

found=0
while read -r file; do
    if hits=$(apart <"$file" | grep -nE "$pattern"); then
        sed "s|^|words: $file:|" <<<"$hits" >&2
        found=$((found + $(wc -l <<<"$hits")))
    fi
    if apart <<<"${file//\// }" | grep -qE "$pattern"; then
        echo "words: $file: its name" >&2
        found=$((found + 1))
    fi
done < <(suspects)
[ $found -eq 0 ] || { echo "words: $found places; $page says what to write instead" >&2; exit 1; }
echo "words: none of ${#words[@]} words and ${#calls[@]} names that were given up"
