// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capture/Blocks.hpp"

#include "capture/format.hpp"

#include <algorithm>
#include <cstring>

namespace capture {

namespace {

/// Longer texts are cut.
constexpr size_t maxText = 200;

constexpr int32_t inProgress = -115;
constexpr uint64_t nanosecondsPerSecond = 1'000'000'000;

} // namespace

void Blocks::section(const char* application) {
    begin(BlockType::section);
    number(byteOrderMagic, 4);
    number(1, 2); // version 1.0
    number(0, 2);
    number(UINT64_MAX, 8); // a section's length is not known while it grows
    textOption(OptionCode::application, application);
    endOptions();
    end();
}

void Blocks::usbInterface(const char* description) {
    begin(BlockType::interface);
    number(LinkType::usbmonPadded, 2);
    number(0, 2);
    number(0, 4); // no limit
    textOption(OptionCode::description, description);
    number(OptionCode::timeResolution, 2);
    number(1, 2);
    number(9, 1);
    pad();
    endOptions();
    end();
}

void Blocks::record(const UsbRecord& record, const uint8_t* data, size_t size) {
    const size_t kept = std::min(size, maxData);
    const uint64_t nanoseconds = record.time % nanosecondsPerSecond;
    const bool isSubmit = record.event == UsbEvent::Submit;
    begin(BlockType::packet);
    number(0, 4);
    number(record.time >> 32U, 4);
    number(record.time & UINT32_MAX, 4);
    number(paddedHeaderSize + kept, 4);
    number(paddedHeaderSize + size, 4);

    number(record.id, 8);
    number(static_cast<uint8_t>(record.event), 1);
    number(static_cast<uint8_t>(record.transfer), 1);
    number(record.endpoint, 1);
    number(record.device, 1);
    number(record.bus, 2);
    number(record.hasSetup ? 0 : noSetup, 1);
    const char direction = record.isIn() ? noDataIn : noDataOut;
    number(size > 0 ? 0 : static_cast<uint8_t>(direction), 1);
    number(record.time / nanosecondsPerSecond, 8);
    number(nanoseconds / 1000, 4);
    number(static_cast<uint32_t>(isSubmit ? inProgress : record.status), 4);
    number(record.length, 4);
    number(kept, 4);
    copy(record.setup.data(), record.setup.size());
    number(record.transfer == UsbTransfer::Interrupt ? 1 : 0, 4); // interval
    number(0, 4);
    number(0, 4);
    number(0, 4);
    copy(data, kept);
    pad();
    end();
}

void Blocks::begin(uint32_t type) {
    start = used;
    overflowed = false;
    number(type, 4);
    number(0, 4);
}

void Blocks::end() {
    number(0, 4);
    if (overflowed) {
        used = start;
        return;
    }
    const size_t total = used - start;
    for (const size_t place : {start + 4, used - 4}) {
        used = place;
        number(total, 4);
    }
    used = start + total;
}

void Blocks::number(uint64_t value, size_t width) {
    if (capacity - used < width) {
        overflowed = true;
        return;
    }
    for (size_t i = 0; i < width; ++i) {
        bytes[used++] = static_cast<uint8_t>(value >> 8U * i & 0xFFU);
    }
}

void Blocks::copy(const uint8_t* values, size_t size) {
    if (capacity - used < size) {
        overflowed = true;
        return;
    }
    // A null pointer is allowed where there is nothing to copy.
    std::copy_n(values, size, bytes + used);
    used += size;
}

void Blocks::pad() {
    number(0, (4 - (used - start) % 4) % 4);
}

void Blocks::textOption(uint16_t code, const char* text) {
    const size_t size = strnlen(text, maxText);
    number(code, 2);
    number(size, 2);
    copy(reinterpret_cast<const uint8_t*>(text), size);
    pad();
}

void Blocks::endOptions() {
    number(OptionCode::end, 2);
    number(0, 2);
}

} // namespace capture
