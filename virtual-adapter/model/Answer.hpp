// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteWriter.hpp"
#include "model/Status.hpp"

#include <utility>

namespace virtual_adapter {

/// What a command answers: the status, and the payload behind it.
struct Answer {
    // NOLINTNEXTLINE(google-explicit-constructor): `return Status::X;`
    Answer(Status answered) : status(answered) {}
    Answer(Status answered, ByteWriter data) : status(answered), payload(std::move(data)) {}

    Status status;
    ByteWriter payload;
};

} // namespace virtual_adapter
