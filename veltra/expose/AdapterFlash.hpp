// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Output.hpp"
#include "buses/Spi.hpp"
#include "expose/serprog/SpiBus.hpp"

#include <optional>
#include <string>

namespace veltra {

/// The adapter's SPI bus, as a client's programmer uses it. What the adapter refuses is refused to
/// the client, and why is told to the user, once in a row.
class AdapterFlash : public serprog::SpiBus {
public:
    /// Sets the bus up; what the adapter has against that is a Failure.
    AdapterFlash(Session& over, Output& tells, const SpiSettings& atStart, uint32_t clockLimit);

    void begin() override;
    std::optional<serprog::Bytes> transfer(const serprog::Bytes& send, size_t count) override;
    std::optional<uint32_t> setClock(uint32_t hertz) override;
    bool select(uint8_t chipSelect) override;

private:
    bool setUp(const SpiSettings& wanted);
    void tell(Failure failure);

    Session& session;
    Output& output;
    const SpiSettings configured;
    const uint32_t fastest;
    SpiSettings settings;
    Spi spi;
    std::string told;
};

} // namespace veltra
