// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/SpiRegisters.hpp"

#include <algorithm>

namespace virtual_adapter {

std::vector<Setting> SpiRegisters::settings() {
    std::vector<Setting> settings = RegisterMap::settings(maxWidth, "128");
    settings.push_back(Setting::hex("read_bits", 0x01, 0xFF, "0x80",
                                    "the bits of the first byte that are all set in a read and "
                                    "all clear in a write"));
    settings.push_back(Setting::number("dummy_bytes", 0, 8, "0",
                                       "how many bytes pass between a read's address and its "
                                       "data"));
    settings.push_back(Setting::numbers("modes", SpiMode_0, SpiMode_3, "0,3",
                                        "the SPI modes that it understands"));
    return settings;
}

std::string SpiRegisters::complaintAbout(const SettingValues& values) {
    std::string complaint = RegisterMap::complaintAbout(values);
    if (!complaint.empty()) {
        return complaint;
    }
    const uint64_t lastRegister = values.get<uint64_t>("registers") - 1;
    const uint64_t readBits = values.get<uint64_t>("read_bits")
                              << 8 * (values.get<uint64_t>("register_bytes") - 1);
    // Every address up to the last is in use, so that of its bits the highest counts.
    uint64_t reach = 1;
    while (reach <= lastRegister) {
        reach <<= 1U;
    }
    if ((readBits & (reach - 1)) != 0) {
        return "registers: " + std::to_string(lastRegister + 1) +
               " registers have addresses in which the read_bits are set";
    }
    return {};
}

SpiRegisters::SpiRegisters(const SettingValues& values)
    : registers(values),
      modes(values.get<Numbers>("modes")),
      readBits(static_cast<unsigned>(values.get<uint64_t>("read_bits"))),
      dummyBytes(static_cast<size_t>(values.get<uint64_t>("dummy_bytes"))) {}

bool SpiRegisters::understands(SpiMode mode, SpiChipSelectPolarity polarity) const {
    return polarity == SpiChipSelectPolarity_ActiveLow &&
           std::find(modes.begin(), modes.end(), mode) != modes.end();
}

Bytes SpiRegisters::transfer(const Bytes& sent) {
    Bytes driven(sent.size(), undrivenByte);
    const size_t addressBytes = registers.addressBytes();
    if (sent.size() < addressBytes) {
        return driven;
    }
    const unsigned direction = sent.front() & readBits;
    size_t address = sent.front() & ~readBits;
    for (size_t i = 1; i < addressBytes; ++i) {
        address = address << 8U | sent[i];
    }
    if (address >= registers.registerCount()) {
        return driven;
    }
    registers.select(address);
    if (direction == readBits) {
        for (size_t i = addressBytes + dummyBytes; i < driven.size(); ++i) {
            driven[i] = registers.read();
        }
    } else if (direction == 0) {
        for (size_t i = addressBytes; i < sent.size(); ++i) {
            registers.write(sent[i]);
        }
    }
    return driven;
}

} // namespace virtual_adapter
