// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/AdapterVariant.hpp"
#include "model/Outbox.hpp"
#include "model/system/voltage.hpp"
#include "model/uart/UartTarget.hpp"

#include <veltrasdk/uart.h>

#include <cstddef>
#include <optional>

namespace virtual_adapter {

/// The commands of the UART.
class Uart {
public:
    /// @p itsTarget is null when the lines lead nowhere.
    Uart(const IoVoltage& ioVoltage, UartTarget* itsTarget, Outbox& toHost,
         const AdapterVariant& variant);

    Answer init(ByteReader& request);
    Answer setParameters(ByteReader& request);
    Answer sendMessage(ByteReader& request);

    /// Characters arrive. Returns false when the UART does not listen.
    bool receiveFromLine(Bytes characters);

private:
    /// Reads the payload that initialising and changing the parameters share. Of all the line's
    /// settings only the number of data bits shows.
    Status readSettings(ByteReader& request, UartDataSize& wanted) const;
    /// The characters without the bits that the line does not carry.
    [[nodiscard]] Bytes onTheLine(Bytes characters) const;
    void receive(const Bytes& message);

    const IoVoltage& voltage;
    UartTarget* target;
    Outbox& outbox;
    /// How many received bytes one notification carries at most.
    size_t maxChunk;
    /// Empty until the UART has been initialised.
    std::optional<UartDataSize> dataSize;
};

} // namespace virtual_adapter
