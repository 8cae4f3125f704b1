#pragma once

#include "model/AdapterVariant.hpp"
#include "model/Outbox.hpp"
#include "model/system/voltage.hpp"

#include <veltrasdk/uart.h>

#include <cstddef>
#include <optional>

namespace virtual_adapter {

/// The UART, whose transmit line is wired to its receive line.
class Uart {
public:
    Uart(const IoVoltage& ioVoltage, Outbox& toHost, const AdapterVariant& variant);

    void registerCommands(Dispatcher& dispatcher);

private:
    Answer init(ByteReader& request);
    Answer setParameters(ByteReader& request);
    Answer sendMessage(ByteReader& request);
    void receive(const Bytes& message);

    const IoVoltage& voltage;
    Outbox& notifications;
    /// How many received bytes one notification carries at most.
    size_t longestChunk;
    /// Empty until the UART has been initialised.
    std::optional<UartDataSize> dataSize;
};

} // namespace virtual_adapter
