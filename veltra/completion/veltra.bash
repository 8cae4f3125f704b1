# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# Completion of veltra for bash: the program knows its own grammar. Readline splits words at = and : too,
# and replaces only the last piece: what stands in front of that is cut off. Files are offered where the
# program knows nothing.
_veltra() {
    local line=${COMP_LINE:0:COMP_POINT} current word
    local -a words
    read -ra words <<<"$line"
    current=${line##*[[:space:]]}
    [[ -n $current ]] || words+=("")
    COMPREPLY=()
    while IFS= read -r word; do
        COMPREPLY+=("${word#"${current%"$2"}"}")
    done < <("$1" __complete $((${#words[@]} - 1)) "${words[@]}" 2>/dev/null)
    if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *[=:] ]]; then
        compopt -o nospace
    fi
}
complete -o nosort -o default -F _veltra veltra
