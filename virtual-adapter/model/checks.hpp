#pragma once

#include "model/PayloadReader.hpp"
#include "model/Status.hpp"

#include <algorithm>
#include <initializer_list>

namespace virtual_adapter {

/// Whether @p value is one of the values that the adapter knows.
inline bool oneOf(uint8_t value, std::initializer_list<uint8_t> known) {
    return std::find(known.begin(), known.end(), value) != known.end();
}

/// The status of a request whose fields have all been read: the layout counts before the values.
inline Status check(const PayloadReader& request, bool valuesKnown) {
    if (!request.consumedExactly()) {
        return Status::MalformedRequest;
    }
    return valuesKnown ? Status::Success : Status::InvalidParameter;
}

} // namespace virtual_adapter
