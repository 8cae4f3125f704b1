# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# What the documents below $source say, done as they say it.
# shellcheck disable=SC2154
mapfile -t documents < <(find "$source/README.md" "$source/docs" "$source/packaging/debian" -name '*.md' | sort)

runBlocks() {
    python3 "$source/tests/docs/document_blocks.py" run "$1" "${documents[@]}"
}

saveProgram() {
    python3 "$source/tests/docs/document_blocks.py" save "$1" "${documents[@]}"
}
