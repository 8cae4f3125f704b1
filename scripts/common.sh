# shellcheck shell=bash
# What every script here starts with: strict mode, the repository's root as working directory,
# a heading for every step, and one clear line when a step fails.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

currentStep=""

elapsed() {
    printf '%d min %02d s' $((SECONDS / 60)) $((SECONDS % 60))
}

step() {
    currentStep=$1
    printf '\n=== %s  (%s)\n' "$1" "$(elapsed)"
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
