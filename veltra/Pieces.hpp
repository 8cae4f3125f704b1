// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Words.hpp"

#include <functional>

namespace veltra {

class Output;

/// The bytes from a place on: `count` of them, or fewer where the end comes first.
Bytes pieceOf(const Bytes& bytes, size_t at, size_t count);

/// What of something long is done at a time, and how that is spoken of.
struct Pieces {
    size_t total;
    size_t size;
    const char* done; ///< As in "8 of 21 bytes are written".
};

/// What one piece takes: from where on, and how many bytes of it there are.
using PieceStep = std::function<void(size_t at, size_t count)>;

/// Carries the step out for each piece. A Failure of one says how far those before have come.
void forEachPiece(const Pieces& pieces, const PieceStep& step);

/// The same, and shows meanwhile how far it has come; `doing` is as in "writing".
void forEachPiece(const Pieces& pieces, Output& output, const char* doing, const PieceStep& step);

} // namespace veltra
