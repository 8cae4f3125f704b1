// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/UsbRecord.hpp"

#include <cstddef>
#include <cstdint>

namespace capture {

/// Blocks of a capture, one behind the other, little-endian on every machine. They lie in the
/// object: it takes no memory and throws nothing. What does not fit any more is left out whole.
class Blocks {
public:
    /// Room for a section's beginning with all its descriptors, or for a report and its company.
    static constexpr size_t capacity = 4096;
    /// Data of a record beyond this are cut off.
    static constexpr size_t maxData = 2048;

    /// Begins a section: what follows is independent of all that the file holds before it.
    void section(const char* application);

    /// The section's one interface, with nanoseconds as its unit of time.
    void usbInterface(const char* description);

    void record(const UsbRecord& record, const uint8_t* data, size_t size);

    [[nodiscard]] const uint8_t* data() const { return bytes; }
    [[nodiscard]] size_t size() const { return used; }

private:
    void begin(uint32_t type);
    void end();
    void number(uint64_t value, size_t width);
    void copy(const uint8_t* values, size_t size);
    void pad();
    void textOption(uint16_t code, const char* text);
    void endOptions();

    uint8_t bytes[capacity];
    size_t used = 0;
    size_t start = 0;
    bool overflowed = false;
};

} // namespace capture
