// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/RegisterMap.hpp"

#include "bytes/words.hpp"

#include <algorithm>

namespace virtual_adapter {

namespace {

constexpr uint64_t maxRegisters = 65536;

size_t numberIn(const SettingValues& values, const char* name, uint64_t otherwise) {
    return static_cast<size_t>(values.getOr<uint64_t>(name, otherwise));
}

size_t widthIn(const SettingValues& values) {
    return numberIn(values, "width", 1);
}

size_t sizeOf(const SettingValues& values) {
    return numberIn(values, "registers", 0) * widthIn(values);
}

/// Lays bytes over @p base, each from its register on.
void lay(const SettingValues& values, const char* name, Bytes& base) {
    for (const auto& [index, bytes] : values.getOr<RegisterBytes>(name)) {
        std::copy(bytes.begin(), bytes.end(),
                  base.begin() + static_cast<Bytes::difference_type>(index * widthIn(values)));
    }
}

std::string complaintAboutBytes(const SettingValues& values, const char* name) {
    const size_t width = widthIn(values);
    uint64_t end = 0;
    for (const auto& [index, bytes] : values.getOr<RegisterBytes>(name)) {
        const std::string where = std::string(name) + ": register " + hexNumber(index);
        if (index >= numberIn(values, "registers", 0)) {
            return where + " is behind the last; there are " +
                   std::to_string(numberIn(values, "registers", 0));
        }
        if (bytes.size() > sizeOf(values) - index * width) {
            return where + ": " + std::to_string(bytes.size()) +
                   " bytes reach behind the last register";
        }
        if (index * width < end) {
            return where + " already has bytes of the one before it";
        }
        end = index * width + bytes.size();
    }
    return {};
}

std::string complaintAboutRanges(const SettingValues& values) {
    for (const RegisterRange& range : values.getOr<RegisterRanges>("read_only")) {
        if (range.last >= numberIn(values, "registers", 0)) {
            return "read_only: register " + hexNumber(range.last) +
                   " is behind the last; there are " +
                   std::to_string(numberIn(values, "registers", 0));
        }
    }
    return {};
}

} // namespace

std::vector<Setting> RegisterMap::settings(unsigned maxWidth, const char* registers) {
    std::vector<Setting> settings{
        Setting::number("register_bytes", 1, 4, "1",
                        "how many bytes make a register's address, most significant first"),
        Setting::number("registers", 1, maxRegisters, registers, "how many registers there are"),
    };
    if (maxWidth > 1) {
        settings.push_back(
            Setting::number("width", 1, maxWidth, "1", "how many bytes make a register"));
        settings.push_back(Setting::flag("auto_increment", "true",
                                         "whether the next register follows on the last byte of "
                                         "one, rather than the same again"));
    }
    settings.push_back(Setting::plain("contents", SettingKind::RegisterContents,
                                      "what the registers hold at first, each in the order in "
                                      "which the bus carries it; the others hold 0")
                           .changing());
    settings.push_back(Setting::plain("read_only", SettingKind::RegisterList,
                                      "registers that acknowledge a write and do not change"));
    settings.push_back(Setting::plain("writable_bits", SettingKind::RegisterContents,
                                      "the bits that a write changes, where these are not all"));
    return settings;
}

std::string RegisterMap::complaintAbout(const SettingValues& values) {
    const uint64_t registers = values.get<uint64_t>("registers");
    const uint64_t addressBits = 8 * values.get<uint64_t>("register_bytes");
    if (registers > uint64_t{1} << addressBits) {
        return "registers: an address of " + std::to_string(addressBits / 8) +
               " byte reaches 256 registers, not " + std::to_string(registers);
    }
    for (const std::string& complaint :
         {complaintAboutBytes(values, "contents"), complaintAboutBytes(values, "writable_bits"),
          complaintAboutRanges(values)}) {
        if (!complaint.empty()) {
            return complaint;
        }
    }
    return {};
}

RegisterMap::RegisterMap(const SettingValues& values)
    : addressSize(numberIn(values, "register_bytes", 1)),
      width(widthIn(values)),
      increments(values.getOr<bool>("auto_increment", true)),
      initialBytes(sizeOf(values), 0x00),
      bytes(initialBytes.size()),
      writableBits(initialBytes.size(), 0xFF) {
    lay(values, "contents", initialBytes);
    lay(values, "writable_bits", writableBits);
    for (const RegisterRange& range : values.getOr<RegisterRanges>("read_only")) {
        std::fill(writableBits.begin() + static_cast<Bytes::difference_type>(range.first * width),
                  writableBits.begin() +
                      static_cast<Bytes::difference_type>((range.last + 1) * width),
                  uint8_t{0});
    }
    std::copy(initialBytes.begin(), initialBytes.end(), bytes.begin());
}

uint8_t RegisterMap::read() {
    const uint8_t byte = bytes[position];
    advance();
    return byte;
}

void RegisterMap::write(uint8_t byte) {
    writeAt(position, byte);
    advance();
}

void RegisterMap::writeAt(size_t index, uint8_t byte) {
    const unsigned writable = writableBits[index];
    bytes[index] = static_cast<uint8_t>((bytes[index] & ~writable) | (byte & writable));
}

void RegisterMap::advance() {
    ++position;
    if (increments) {
        position %= bytes.size();
    } else if (position % width == 0) {
        position -= width;
    }
}

void RegisterMap::reset() {
    bytes = initialBytes;
    position = 0;
}

std::string RegisterMap::set(const std::string& name, const std::string& value) {
    const std::optional<uint64_t> index = numberOf(name);
    if (!index || *index >= registerCount()) {
        return "there is no setting '" + name + "' that changes; there are the registers " +
               hexNumber(0) + " to " + hexNumber(registerCount() - 1);
    }
    const std::optional<Bytes> given = bytesOf(value);
    const size_t left = bytes.size() - static_cast<size_t>(*index) * width;
    if (!given || given->empty() || given->size() > left) {
        return "register " + hexNumber(*index) + ": '" + value +
               "' is not allowed; allowed is a byte such as 0x2A, or hex:0011ff or str:text of "
               "from 1 to " +
               std::to_string(left) + " bytes";
    }
    std::copy(given->begin(), given->end(),
              bytes.end() - static_cast<Bytes::difference_type>(left));
    return {};
}

} // namespace virtual_adapter
