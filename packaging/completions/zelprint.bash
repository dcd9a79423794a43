# Completion of zelprint for bash. Options are read from --help, so they are those of the program.

_zelprint_options() { # [SUBCOMMAND]
    "$zelprint" $1 --help 2>/dev/null | grep -oE -- '(^|[ ,])--?[a-z][a-z-]*' | tr -d ' ,'
}

# The value of an option given earlier on the line.
_zelprint_value_of() { # OPTION
    local i
    for ((i = 1; i < COMP_CWORD; ++i)); do
        if [ "${COMP_WORDS[i]}" = "$1" ]; then
            i=$((i + 1))
            if [ "${COMP_WORDS[i]}" = "=" ]; then i=$((i + 1)); fi
            printf '%s\n' "${COMP_WORDS[i]}"
        fi
    done | tail -n 1
}

# The first column of a table of printer-info: names of the PPD, which hold no blanks.
_zelprint_of_printer() { # Page|Resolution
    local ppd
    ppd=$(_zelprint_value_of --ppd)
    ppd=${ppd/#\~/$HOME}
    "$zelprint" printer-info "${ppd//\\/}" 2>/dev/null |
        awk -v "title=$1" '$1 == title { on = 1; next } !NF { on = 0 } on { sub(/^\*/, ""); print $1 }'
}

# The words that the help lists for an option: --intent perceptual|relative|...
_zelprint_words_of() { # OPTION
    "$zelprint" $command --help 2>/dev/null |
        sed -nE "s/^ +([^ ]+,)?$1(,[^ ]+)? ([A-Za-z|]+)( .*)?\$/\\3/p" | grep -F '|' | tr '|' '\n' | grep -v '[A-Z]'
}

# Offers the lines of standard input that begin with what is typed, blanks and all.
_zelprint_offer() {
    local line
    while IFS= read -r line; do
        if [[ $line == "$cur"* ]]; then COMPREPLY+=("$(printf '%q' "$line")"); fi
    done
}

_zelprint() {
    local cur prev zelprint=${COMP_WORDS[0]//\\/} command= word words
    zelprint=${zelprint/#\~/$HOME}
    cur=${COMP_WORDS[COMP_CWORD]}
    prev=${COMP_WORDS[COMP_CWORD - 1]}
    if [ "$cur" = "=" ]; then cur=; elif [ "$prev" = "=" ]; then prev=${COMP_WORDS[COMP_CWORD - 2]}; fi
    COMPREPLY=()
    local commands
    commands=$("$zelprint" --help 2>/dev/null | sed -n '/^Subcommands:/,$p' | sed -nE 's/^  ([a-z-]+) .*/\1/p')
    for word in "${COMP_WORDS[@]:1:COMP_CWORD - 1}"; do
        if grep -qxF -- "$word" <<<"$commands"; then command=$word; break; fi
    done
    case $prev in
        --separation) _zelprint_offer < <("$zelprint" separations 2>/dev/null); return ;;
        --media) _zelprint_offer < <(_zelprint_of_printer Page; echo auto); return ;;
        --resolution) _zelprint_offer < <(_zelprint_of_printer Resolution); return ;;
        --hot-folder | --bundle) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- "$cur"); return ;;
    esac
    if [[ $prev == --* ]] && words=$(_zelprint_words_of "$prev"); then _zelprint_offer <<<"$words"; return; fi
    case $cur in
        -*) _zelprint_offer < <(_zelprint_options "$command"); return ;;
    esac
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
    if [ "$COMP_CWORD" -eq 1 ]; then _zelprint_offer <<<"$commands"; fi
}
complete -F _zelprint zelprint
