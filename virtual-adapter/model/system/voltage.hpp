#pragma once

#include "model/Dispatcher.hpp"

namespace virtual_adapter {

/// The one I/O voltage that the I2C, SPI, UART and GPIO pins share.
class IoVoltage {
public:
    void registerCommands(Dispatcher& dispatcher);

    /// @p handler, refused with `NoVoltage` while the output is off. The voltage must outlive it.
    [[nodiscard]] Dispatcher::Handler required(Dispatcher::Handler handler) const;

private:
    Answer set(ByteReader& request);

    bool outputEnabled = false;
};

} // namespace virtual_adapter
