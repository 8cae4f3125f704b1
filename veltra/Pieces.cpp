// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Pieces.hpp"

#include "Failure.hpp"
#include "Output.hpp"

#include <algorithm>

namespace veltra {

Bytes pieceOf(const Bytes& bytes, size_t at, size_t count) {
    const size_t first = std::min(at, bytes.size());
    const auto begin = bytes.begin() + static_cast<ptrdiff_t>(first);
    return {begin, begin + static_cast<ptrdiff_t>(std::min(count, bytes.size() - first))};
}

void forEachPiece(const Pieces& pieces, const PieceStep& step) {
    for (size_t at = 0; at < pieces.total; at += pieces.size) {
        try {
            step(at, std::min(pieces.size, pieces.total - at));
        } catch (Failure& failure) {
            failure.progress = std::to_string(at) + " of " + std::to_string(pieces.total) +
                               " bytes are " + pieces.done;
            throw;
        }
    }
}

void forEachPiece(const Pieces& pieces, Output& output, const char* doing, const PieceStep& step) {
    forEachPiece(pieces, [&](size_t at, size_t count) {
        output.progress(doing, at, pieces.total);
        step(at, count);
    });
    output.progress(doing, pieces.total, pieces.total);
}

} // namespace veltra
