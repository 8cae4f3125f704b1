// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Status.hpp"

#include <veltrasdk/i3c.h>

#include <cstddef>
#include <optional>

namespace virtual_adapter {

/// A Common Command Code as the host asks for it: the payload of 0x1909.
class I3cCccCommand {
public:
    enum class Kind { Broadcast, Write, Read };

    /// @p besideLegacy: whether legacy I2C devices share the bus.
    I3cCccCommand(ByteReader& request, bool besideLegacy);

    /// Whether the controller can send the command: of a code that it knows, the rest is what the
    /// code calls for.
    [[nodiscard]] Status status() const { return checked; }

    /// Whether the code is one that the targets know.
    [[nodiscard]] bool isKnown() const;

    [[nodiscard]] Kind kind() const;
    [[nodiscard]] uint8_t address() const { return targetAddress; }
    [[nodiscard]] CCC code() const { return static_cast<CCC>(commandCode); }
    [[nodiscard]] std::optional<uint8_t> definingByte() const;
    /// The number of bytes that a read asks for.
    [[nodiscard]] size_t length() const { return lengthField; }
    /// The bytes behind a broadcast code, one in the defining byte's place among them, or the
    /// bytes written to a target.
    [[nodiscard]] Bytes operands() const;
    /// Which command this was, for the head of the response.
    [[nodiscard]] Bytes echo() const { return {targetAddress, commandCode, definingByteField}; }

private:
    [[nodiscard]] Status check(bool besideLegacy) const;
    /// Whether there are as many bytes as the length field and the code say.
    [[nodiscard]] bool isWellFormed() const;

    uint8_t targetAddress;
    unsigned control;
    size_t lengthField;
    uint8_t commandCode;
    uint8_t definingByteField;
    Bytes data;
    Status checked;
};

} // namespace virtual_adapter
