// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/system/system.hpp"

namespace virtual_adapter {

Answer System::getUsbString(ByteReader& request) const {
    const size_t index = request.u8();
    if (!request.consumedExactly()) {
        return Status::MalformedRequest;
    }
    if (index < 1 || index > identityStrings.size()) {
        // The length byte counts itself: an empty string for readers that ignore the status.
        return {Status::InvalidParameter, ByteWriter().countU8(1)};
    }
    const std::string& text = identityStrings.at(index - 1);
    return {Status::Success,
            ByteWriter().countU8(static_cast<uint8_t>(text.size() + 1)).text(text, text.size())};
}

Answer System::enterBootMode(ByteReader& request) {
    if (!request.consumedExactly()) {
        return Status::MalformedRequest;
    }
    bootMode = true;
    return Status::Success;
}

} // namespace virtual_adapter
