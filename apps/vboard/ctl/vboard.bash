# Completion of vboard for bash: commands, verbs of "vboard ctl" with their arguments, files.
# The verbs come from the program itself.

_vboard_words() { vboard ctl --complete "$@" 2>/dev/null; }

_vboard_offer() # words, one a line, those that begin as the one that is typed
{
    local word
    while read -r word; do
        [[ -n $word && $word == "$cur"* ]] && COMPREPLY+=("$word")
    done
}

_vboard_files() { compopt -o filenames 2>/dev/null; _vboard_offer < <(compgen -f -- "$cur"); }

_vboard_ctl()
{
    local verbs words=() word verb="" i
    verbs=$(_vboard_words)
    for ((i = 2; i < COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        case $word in
        --json) ;;
        --*) ((++i)) ;;
        *) words+=("$word") ;;
        esac
    done
    case ${COMP_WORDS[COMP_CWORD - 1]} in
    --board) _vboard_offer < <(_vboard_words boards); return ;;
    esac
    # The longest verb that the words begin with.
    if [[ ${#words[@]} -ge 2 ]] && grep -qxF -- "${words[0]} ${words[1]}" <<<"$verbs"; then
        verb="${words[0]} ${words[1]}"
    elif [[ ${#words[@]} -ge 1 ]] && grep -qxF -- "${words[0]}" <<<"$verbs"; then
        verb=${words[0]}
    fi
    if [[ ${#words[@]} -eq 0 ]]; then
        _vboard_offer < <(cut -d' ' -f1 <<<"$verbs" | sort -u)
        [[ $cur == -* ]] && _vboard_offer < <(printf '%s\n' --json --board --help)
        return
    fi
    # The second word of a verb.
    [[ ${#words[@]} -eq 1 ]] && _vboard_offer < <(sed -n "s/^${words[0]} //p" <<<"$verbs")
    [[ -n $verb ]] || return
    while read -r word; do
        case $word in
        FILE) [[ $cur == -* ]] || _vboard_files ;;
        CALL) [[ $cur == -* ]] || _vboard_offer < <(_vboard_words "fault calls") ;;
        --*) [[ $cur == -* ]] && _vboard_offer <<<"$word" ;;
        *) [[ $cur == -* ]] || _vboard_offer <<<"$word" ;;
        esac
    done < <(_vboard_words "$verb")
}

_vboard()
{
    local cur=${COMP_WORDS[COMP_CWORD]} i
    COMPREPLY=()
    if [[ $COMP_CWORD -eq 1 ]]; then
        _vboard_offer < <(printf '%s\n' run ctl test trace)
        return
    fi
    case ${COMP_WORDS[1]} in
    ctl) _vboard_ctl ;;
    run | test)
        for ((i = 2; i < COMP_CWORD; ++i)); do
            [[ ${COMP_WORDS[i]} == -- ]] || continue
            if [[ $i -eq $((COMP_CWORD - 1)) ]]; then _vboard_offer < <(compgen -c -- "$cur"); fi
            _vboard_files
            return
        done
        if [[ ${COMP_WORDS[1]} == run && $cur == -* ]]; then
            _vboard_offer < <(printf '%s\n' --listen --board --folder --record --no-reboot --stepped --quiet --help --)
        elif [[ $cur == -* ]]; then
            _vboard_offer < <(printf '%s\n' --define --output --junit --repeat --only --list --check --realtime \
                --stepped --limit --help --)
        else
            _vboard_files
        fi
        ;;
    trace)
        [[ $COMP_CWORD -eq 2 ]] && _vboard_offer < <(printf '%s\n' timeline diff summary)
        [[ $COMP_CWORD -gt 2 ]] && _vboard_files
        ;;
    esac
}

complete -F _vboard vboard
