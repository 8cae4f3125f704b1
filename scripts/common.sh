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

giveUp() {
    printf '%s: %s\n' "$0" "$*" >&2
    exit 1
}

asRoot() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# Whether an ordinary user may make a root's file system in name spaces of his own. No chroot lets him.
mayUnshare() {
    unshare --map-root-user --map-auto --mount true 2>/dev/null
}

# Run by the trap below.
# shellcheck disable=SC2317
reportFailure() {
    local status=$?
    if [ "$status" -ne 0 ]; then
        printf '\n%s: FAILED%s after %s\n' "$0" "${currentStep:+ at \"$currentStep\"}" "$(elapsed)" >&2
    fi
}
trap reportFailure EXIT
