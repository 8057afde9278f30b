# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT
#
# Completion of orv for bash. The commands and options come from the help of the program.

# Prints the document of the command line: the first word that is a file.
_orv_document()
{
    local word
    for word in "${COMP_WORDS[@]:2:COMP_CWORD-2}" "${COMP_WORDS[@]:COMP_CWORD+1}"; do
        [ -f "$word" ] && printf '%s\n' "$word" && return
    done
}

# Offers the paths of the passes in the document that begin with $1.
_orv_offer_passes()
{
    local document path
    document=$(_orv_document)
    [ -n "$document" ] || return
    while IFS= read -r path; do
        [[ $path == "$1"* ]] && COMPREPLY+=("$(printf %q "$path")")
    done < <(orv explain -- "$document" 2>/dev/null | cut -f 2)
}

_orv()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]}
    COMPREPLY=()

    if [ "$COMP_CWORD" -eq 1 ] || { [ "$COMP_CWORD" -eq 2 ] && [ "$command" = help ]; }; then
        mapfile -t COMPREPLY < <(compgen -W \
            "help --help --version $(orv help | sed -n 's/^  \([a-z]*\)  .*/\1/p')" -- "$current")
        return
    fi

    case $previous in
    --slow | --fail | --disable)
        _orv_offer_passes "$current"
        [ "$previous" = --disable ] || compopt -o nospace
        return
        ;;
    --frames | --timeout | --parameter)
        return
        ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W \
            "$(orv help "$command" 2>/dev/null \
                | sed -n 's/^  [- ].*\(--[a-z]*\).*/\1/p')" -- "$current")
    elif [ "$command" = explain ] && [ "$COMP_CWORD" -gt 2 ]; then
        _orv_offer_passes "$current"
    else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}

complete -F _orv orv
