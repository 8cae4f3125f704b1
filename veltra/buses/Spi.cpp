// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "buses/Spi.hpp"

#include <algorithm>

namespace veltra {

Spi::Spi(Session& over, const SpiSettings& settings) : session(over) {
    const uint32_t clock = parseFrequency(settings.clock);
    const auto order = settings.lsbFirst ? SpiBitOrder_LsbFirst : SpiBitOrder_MsbFirst;
    const auto polarity =
        settings.activeHigh ? SpiChipSelectPolarity_ActiveHigh : SpiChipSelectPolarity_ActiveLow;
    session.supplyPins();
    session.setUp("spi",
                  "spi: chip select " + std::to_string(settings.chipSelect) +
                      (settings.activeHigh ? ", active high" : "") + ", mode " +
                      std::to_string(settings.mode) + ", " + std::to_string(settings.bits) +
                      " bits, " + (settings.lsbFirst ? "least" : "most") + " significant first, " +
                      std::to_string(clock) + " Hz",
                  [&](VeltraSDK& sdk) {
                      return sdk.spiControllerInit(order, static_cast<SpiMode>(settings.mode),
                                                   static_cast<SpiDataWidth>(settings.bits),
                                                   static_cast<SpiChipSelect>(settings.chipSelect),
                                                   polarity, clock);
                  });
}

Bytes Spi::transfer(Bytes send, size_t count) {
    Bytes received;
    session.perform(
        "spi transfer: bytes " + hexWords(send) + ", receiving " + std::to_string(count),
        [&](VeltraSDK& sdk) {
            return sdk.spiTransfer(send, received, static_cast<uint16_t>(count));
        },
        &received);
    if (!session.rehearses() && received.size() != count) {
        throw Failure(ExitStatus::NoAnswer, "out-of-step",
                      std::to_string(received.size()) + " bytes came back instead of " +
                          std::to_string(count));
    }
    return received;
}

Bytes Spi::query(const Bytes& send, size_t count) {
    const Bytes received = transfer(send, send.size() + count);
    const size_t first = std::min(send.size(), received.size());
    return {received.begin() + static_cast<ptrdiff_t>(first), received.end()};
}

} // namespace veltra
