// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Status.hpp"

namespace virtual_adapter {

/// Whether @p value lies in the range, both ends included.
template <typename Value, typename Bound>
constexpr bool within(Value value, Bound lowest, Bound highest) {
    return value >= lowest && value <= highest;
}

/// The status of a request whose fields have all been read: the layout counts before the values.
inline Status check(const ByteReader& request, bool valuesKnown) {
    if (!request.consumedExactly()) {
        return Status::MalformedRequest;
    }
    return valuesKnown ? Status::Success : Status::InvalidParameter;
}

} // namespace virtual_adapter
