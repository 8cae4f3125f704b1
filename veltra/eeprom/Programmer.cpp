// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "eeprom/Programmer.hpp"

#include "Pieces.hpp"

#include <algorithm>
#include <chrono>

namespace veltra {

namespace {

using Clock = std::chrono::steady_clock;

// Write cycles take 10 ms at most. Attempts are counted too, since where there is no bus there is
// no time either.
constexpr auto writeCycleLimit = std::chrono::milliseconds(200);
constexpr int minAttempts = 50;
constexpr size_t readBytes = 1024;

Bytes registerOf(const Eeprom& eeprom, size_t at) {
    return parseRegister(std::to_string(at), eeprom.registerBytes);
}

/// An EEPROM acknowledges nothing while it writes.
void waitUntilWritten(I2c& bus, const Eeprom& eeprom) {
    const Clock::time_point end = Clock::now() + writeCycleLimit;
    for (int attempt = 0; !bus.acknowledges(eeprom.address); ++attempt) {
        if (attempt >= minAttempts && Clock::now() > end) {
            throw Failure(ExitStatus::Refused, "write-cycle",
                          "no acknowledge any more after a page was written");
        }
    }
}

void compare(const Bytes& wanted, const Bytes& found, size_t at) {
    const auto differs = std::mismatch(found.begin(), found.end(), wanted.begin(), wanted.end());
    if (differs.second == wanted.end()) {
        return;
    }
    const auto offset = static_cast<size_t>(differs.second - wanted.begin());
    const std::string seen = differs.first == found.end() ? "missing" : hexDigits({*differs.first});
    throw Failure(ExitStatus::NotAsExpected, "verify",
                  "byte " + hexNumber(at + offset, 4) + " is " + seen + " and should be " +
                      hexDigits({wanted[offset]}))
        .advise("Is it write-protected, or are its pages smaller than --page says?");
}

} // namespace

void programEeprom(I2c& bus, Output& output, bool rehearses, const Eeprom& eeprom,
                   const Bytes& contents) {
    forEachPiece({contents.size(), eeprom.pageBytes, "written"}, output, "writing",
                 [&](size_t at, size_t count) {
                     bus.write(eeprom.address, registerOf(eeprom, at),
                               pieceOf(contents, at, count));
                     waitUntilWritten(bus, eeprom);
                 });
    forEachPiece({contents.size(), readBytes, "verified"}, output, "verifying",
                 [&](size_t at, size_t count) {
                     const Bytes found = bus.read(eeprom.address, registerOf(eeprom, at),
                                                  static_cast<uint16_t>(count));
                     if (!rehearses) {
                         compare(pieceOf(contents, at, count), found, at);
                     }
                 });
}

} // namespace veltra
