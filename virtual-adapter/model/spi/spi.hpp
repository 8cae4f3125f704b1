#pragma once

#include "model/spi/SpiTarget.hpp"
#include "model/system/voltage.hpp"

#include <array>
#include <memory>
#include <optional>

namespace virtual_adapter {

/// The SPI controller and the targets behind its chip selects.
class Spi {
public:
    explicit Spi(const IoVoltage& ioVoltage);

    void registerCommands(Dispatcher& dispatcher);

private:
    struct Settings {
        SpiBitOrder bitOrder;
        SpiMode mode;
        SpiDataWidth dataWidth;
        SpiChipSelect chipSelect;
        SpiChipSelectPolarity polarity;
    };

    Answer controllerInit(ByteReader& request);
    Answer setParameters(ByteReader& request);
    Answer transfer(ByteReader& request);

    /// Reads the payload that initialising and changing the parameters share.
    static Status readSettings(ByteReader& request, Settings& settings);
    /// What is received while @p sent goes out.
    [[nodiscard]] Bytes exchange(const Bytes& sent) const;

    const IoVoltage& voltage;
    std::array<std::unique_ptr<SpiTarget>, 4> targets;
    /// Empty until the controller has been initialised.
    std::optional<Settings> current;
};

} // namespace virtual_adapter
