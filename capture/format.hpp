// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>

// The numbers of pcapng and of usbmon's header that both its writer and its reader need.

namespace capture {

namespace BlockType {
constexpr uint32_t section = 0x0A0D0D0A;
constexpr uint32_t interface = 1;
constexpr uint32_t packet = 6;
} // namespace BlockType

namespace OptionCode {
constexpr uint16_t end = 0;
constexpr uint16_t description = 3;
constexpr uint16_t application = 4;
constexpr uint16_t timeResolution = 9;
constexpr uint16_t timeOffset = 14;
} // namespace OptionCode

namespace LinkType {
/// usbmon's header of 48 bytes.
constexpr uint16_t usbmon = 189;
/// The same with 16 bytes more.
constexpr uint16_t usbmonPadded = 220;
} // namespace LinkType

constexpr uint32_t byteOrderMagic = 0x1A2B3C4D;
constexpr uint32_t minBlockSize = 12;
/// No program writes longer ones.
constexpr uint32_t maxBlockSize = uint32_t{1} << 24U;

constexpr size_t headerSize = 48;
constexpr size_t paddedHeaderSize = 64;

/// In place of 0, where the setup bytes or the data are absent.
constexpr char noSetup = '-';
constexpr char noDataIn = '<';
constexpr char noDataOut = '>';

} // namespace capture
