# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# What every script here starts with: strict mode, the repository's root as working directory, the
# surroundings that a login would make, a heading for every step, and one clear line when a step fails.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# An ordinary user's path has no administration tools, and a container may lack the rest.
PATH=$PATH:/usr/local/sbin:/usr/sbin:/sbin
HOME=${HOME:-$PWD/build/home}
export PATH HOME
# What is built is for everybody, whatever its maker keeps to himself.
umask 022
# git refuses a clone that another user made, as happens in containers and below sudo.
export GIT_CONFIG_COUNT=1 GIT_CONFIG_KEY_0=safe.directory GIT_CONFIG_VALUE_0=$PWD

currentStep=""

elapsed() {
    printf '%d min %02d s' $((SECONDS / 60)) $((SECONDS % 60))
}

step() {
    currentStep=$1
    printf '\n=== %s  (%s)\n' "$1" "$(elapsed)"
}

# A compiler cache is used where there is one. It takes precompiled headers as they are.
if command -v ccache >/dev/null; then
    export CMAKE_C_COMPILER_LAUNCHER=${CMAKE_C_COMPILER_LAUNCHER:-ccache}
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
    export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$PWD}
    export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:-pch_defines,time_macros,include_file_mtime,include_file_ctime}
fi

giveUp() {
    printf '%s: %s\n' "$0" "$*" >&2
    exit 1
}

# Its input, with a comma behind every thousand.
groupThousands() {
    sed -E ':a; s/(^|[^0-9.])([0-9]+)([0-9]{3})($|[^0-9])/\1\2,\3\4/; ta'
}

# replaceRow DOCUMENT ROW: in the first table that has a row with the same first cell and as many cells
replaceRow() {
    local first
    first=$(printf '%s' "$2" | cut -d '|' -f 2)
    awk -v row="$2" -v first="|$first|" '
        index($0, first) == 1 && gsub(/[|]/, "|") == gsub(/[|]/, "|", row) && !replaced { print row; replaced = 1; next }
        { print }
        END { exit !replaced }' "$1" >"$1.new" || { rm -f "$1.new"; giveUp "$1 has no row that begins with |$first|"; }
    cat "$1.new" >"$1"
    rm "$1.new"
}

# Where nobody can be asked for a password, sudo must not wait for one.
asRoot() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif [ -t 0 ]; then
        sudo "$@"
    else
        sudo --non-interactive "$@"
    fi
}

# Whether an ordinary user may make a root's file system in name spaces of his own. No chroot lets him.
mayUnshare() {
    unshare --map-root-user --map-auto --mount true 2>/dev/null
}

# testSummary BUILD LOG: what ctest has said of it, and how many tests the programs that ran as a whole had.
testSummary() {
    printf '%s: %s' "$1" "$(grep '% tests passed' "$2")"
    find "build/$1" -name 'google-*.xml' -exec sed -n 's/^<testsuites tests="\([0-9]*\)".*/\1/p' {} + |
        awk '{ sum += $1 } END { if (NR) printf " (%d tests of GoogleTest in %d processes)", sum, NR; print "" }'
}

# Run by the trap below.
# shellcheck disable=SC2317
reportFailure() {
    local status=${1:-$?}
    if [ "$status" -ne 0 ]; then
        printf '\n%s: FAILED%s after %s\n' "$0" "${currentStep:+ at \"$currentStep\"}" "$(elapsed)" >&2
    fi
}
trap reportFailure EXIT
