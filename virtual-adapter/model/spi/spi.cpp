// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/spi/spi.hpp"

#include "model/checks.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

namespace {

constexpr uint32_t minClock = 10'000;
constexpr uint32_t maxClock = 50'000'000;

/// What goes out when more bytes are to be received than sent.
constexpr uint8_t fillByte = 0xFF;

uint8_t reversed(uint8_t byte) {
    unsigned result = 0;
    for (unsigned bit = 0; bit < 8; ++bit) {
        result = result << 1U | (static_cast<unsigned>(byte) >> bit & 1U);
    }
    return static_cast<uint8_t>(result);
}

/// The bytes as a target that shifts its most significant bit first sees them, and back again.
/// Words of 16 bits travel to and from the host low byte first.
Bytes wireOrder(Bytes bytes, SpiBitOrder bitOrder, SpiDataWidth dataWidth) {
    if (bitOrder == SpiBitOrder_LsbFirst) {
        std::transform(bytes.begin(), bytes.end(), bytes.begin(), reversed);
    } else if (dataWidth == SpiDataWidth_16Bits) {
        for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
            std::swap(bytes[i], bytes[i + 1]);
        }
    }
    return bytes;
}

} // namespace

Status Spi::readSettings(ByteReader& request, Settings& settings) const {
    settings.bitOrder = static_cast<SpiBitOrder>(request.u8());
    settings.mode = static_cast<SpiMode>(request.u8());
    settings.dataWidth = static_cast<SpiDataWidth>(request.u8());
    settings.chipSelect = static_cast<SpiChipSelect>(request.u8());
    settings.polarity = static_cast<SpiChipSelectPolarity>(request.u8());
    const uint32_t clock = request.u32();
    return voltage.check(request,
                         within(settings.bitOrder, SpiBitOrder_MsbFirst, SpiBitOrder_LsbFirst) &&
                             within(settings.mode, SpiMode_0, SpiMode_3) &&
                             (settings.dataWidth == SpiDataWidth_8Bits ||
                              settings.dataWidth == SpiDataWidth_16Bits) &&
                             within(settings.chipSelect, SpiChipSelect_0, SpiChipSelect_3) &&
                             within(settings.polarity, SpiChipSelectPolarity_ActiveLow,
                                    SpiChipSelectPolarity_ActiveHigh) &&
                             within(clock, minClock, maxClock));
}

Answer Spi::controllerInit(ByteReader& request) {
    Settings wanted{};
    const Status status = readSettings(request, wanted);
    if (status == Status::Success) {
        current = wanted;
    }
    return status;
}

Answer Spi::setParameters(ByteReader& request) {
    Settings wanted{};
    const Status status = readSettings(request, wanted);
    if (status != Status::Success) {
        return status;
    }
    if (!current) {
        return Status::NotInitialised;
    }
    current = wanted;
    return Status::Success;
}

Answer Spi::transfer(ByteReader& request) {
    const size_t sendLength = request.u16();
    const uint16_t receiveLength = request.u16();
    Bytes bytes = request.bytes(sendLength);
    const Status status = voltage.check(request, true);
    if (status != Status::Success) {
        return status;
    }
    if (!current) {
        return Status::NotInitialised;
    }
    const bool wholeWords = sendLength % 2 == 0 && receiveLength % 2 == 0;
    if (current->dataWidth == SpiDataWidth_16Bits && !wholeWords) {
        return Status::InvalidParameter;
    }
    // Both directions run at once, for as many clocks as the longer one takes.
    bytes.resize(std::max<size_t>(sendLength, receiveLength), fillByte);
    bytes = exchange(bytes);
    bytes.resize(receiveLength);

    return {Status::Success, ByteWriter().countU16(receiveLength).bytes(bytes)};
}

Bytes Spi::exchange(const Bytes& sent) const {
    const auto& [bitOrder, mode, dataWidth, chipSelect, polarity] = *current;
    const Bytes received =
        bus.transfer(chipSelect, mode, polarity, wireOrder(sent, bitOrder, dataWidth));
    return wireOrder(received, bitOrder, dataWidth);
}

} // namespace virtual_adapter
