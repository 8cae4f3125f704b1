// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Answer.hpp"

#include <array>
#include <string>
#include <utility>

namespace virtual_adapter {

/// The adapter's identity strings and its boot mode.
class System {
public:
    explicit System(std::array<std::string, 5> strings) : identityStrings(std::move(strings)) {}

    Answer getUsbString(ByteReader& request) const;
    Answer enterBootMode(ByteReader& request);

    /// Whether the adapter has left its application firmware, and with it the USB bus.
    [[nodiscard]] bool inBootMode() const { return bootMode; }

private:
    std::array<std::string, 5> identityStrings;
    bool bootMode = false;
};

} // namespace virtual_adapter
