// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Setting.hpp"
#include "bytes/Bytes.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace virtual_adapter {

/// The registers of a part that its users describe: how many, how wide, what they hold at first
/// and which of their bits a host can change.
class RegisterMap {
public:
    /// Every register part has these settings; @p maxWidth 1 leaves the width and the end of a
    /// register out, @p registers is how many there are unless given.
    static std::vector<Setting> settings(unsigned maxWidth, const char* registers = "256");

    /// What is wrong with settings that are each allowed by itself; empty when nothing is. The
    /// first word is the name of the setting.
    static std::string complaintAbout(const SettingValues& values);

    /// The settings must be without a complaint.
    explicit RegisterMap(const SettingValues& values);

    [[nodiscard]] size_t registerCount() const { return bytes.size() / width; }
    /// How many bytes make a register's address.
    [[nodiscard]] size_t addressBytes() const { return addressSize; }

    /// The next byte is the first of the register, which must be there.
    void select(size_t index) { position = index * width; }
    /// Reads the next byte. Behind the last byte of a register comes the next register, and behind
    /// the last register the first; without auto-increment the same register again.
    uint8_t read();
    /// Writes those bits of the next byte that a host can change.
    void write(uint8_t byte);

    [[nodiscard]] uint8_t at(size_t index) const { return bytes[index]; }
    void writeAt(size_t index, uint8_t byte);
    [[nodiscard]] const Bytes& contents() const { return bytes; }

    /// What they held at first.
    void reset();

    /// Settable::set: a register's name is its number, its value the bytes from there on, whatever
    /// a host can change.
    std::string set(const std::string& name, const std::string& value);

private:
    void advance();

    size_t addressSize;
    size_t width;
    bool increments;
    Bytes initialBytes;
    Bytes bytes;
    /// The bits that a write changes.
    Bytes writableBits;
    size_t position = 0;
};

} // namespace virtual_adapter
