// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>

namespace devices {

// What is said between a program whose devices these are and the broker that has the adapter.
//
// A connection carries one request and one answer. A request is its size without these four bytes,
// its kind, the identifier of the opened device that it is for, and what that kind carries. An
// answer is its size, the result, which is an error number below zero, and data. Numbers are
// little-endian.
//
// The connection of a request to open stays: it is the program's descriptor, and lives as long as
// one does in any process. Its own name holds the identifier; nothing more is sent over it.

constexpr size_t sizeField = 4;
constexpr size_t idSize = 16;
constexpr size_t requestHead = sizeField + 1 + idSize;
constexpr size_t answerHead = sizeField + 4;

/// The name of a program's end of such a connection: this in the abstract namespace, the
/// identifier, the name of the device.
constexpr char nameOfOpened[] = "veltra-devices/";

/// The longest name of a device, such as "spidev0.0".
constexpr size_t maxName = 23;

/// Of a whole message: 42 I2C messages of 8192 bytes stay below.
constexpr size_t maxMessageSize = size_t{1} << 19U;

constexpr size_t maxI2cMessages = 42;
constexpr size_t maxI2cLength = 8192;
/// The bytes of i2c_smbus_data.
constexpr size_t maxSmbusData = 34;
/// One chip-select assertion of the adapter.
constexpr size_t maxSpiBytes = 0xFFFF;
/// What a transfer does.
constexpr uint8_t spiSends = 1;
constexpr uint8_t spiReceives = 2;

enum class RequestKind : uint8_t {
    /// How it is opened as O_ACCMODE has it, one byte; the device's name.
    Open = 1,
    /// Whether there is a device of that name.
    Find = 2,
    /// The number of an ioctl in four bytes; its arguments.
    Control = 3,
    /// How many bytes, in four.
    Read = 4,
    /// The bytes.
    Write = 5,
};

// The arguments of an ioctl are a number in four bytes, what it points to in four bytes, or:
//
// I2C_RDWR        the number of messages in four bytes; for each its address, flags and length in
// two
//                 bytes each, and the bytes of a write. Answered by the bytes of all reads.
// I2C_SMBUS       read_write, command, size in four bytes, the bytes of i2c_smbus_data that go with
//                 the size. Answered by those that a read sets.
// SPI_IOC_MESSAGE for each transfer its len and speed_hz in four bytes, delay_usecs in two,
//                 bits_per_word, cs_change, tx_nbits, rx_nbits, word_delay_usecs, whether it sends
//                 and receives, and what it sends. Answered by what the receiving ones receive.

/// The variable that tells programs where the broker's socket is.
constexpr const char* socketVariable = "VELTRA_DEVICES_SOCKET";

} // namespace devices
