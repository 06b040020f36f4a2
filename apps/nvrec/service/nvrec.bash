# Completion of nvrec for bash: its subcommands, their options, and files.
_nvrec()
{
    local word=${COMP_WORDS[COMP_CWORD]} help
    if [ "$COMP_CWORD" -eq 1 ]; then
        help=$(nvrec --help 2>/dev/null | sed -nE '/^Subcommands:/,$s/^  ([a-z]+) .*/\1/p')
        COMPREPLY=($(compgen -W "$help --help --help-all --version" -- "$word"))
    elif [[ $word == -* ]]; then
        help=$(nvrec "${COMP_WORDS[1]}" --help 2>/dev/null | grep -oE '^  [^ ]+' | tr ', ' '\n\n' | grep '^-')
        COMPREPLY=($(compgen -W "$help" -- "$word"))
    else
        COMPREPLY=($(compgen -f -- "$word"))
    fi
}
complete -o filenames -F _nvrec nvrec
