#pragma once

#include "model/Dispatcher.hpp"

#include <array>
#include <string>

namespace virtual_adapter {

/// The adapter's identity strings and its boot mode.
class System {
public:
    explicit System(std::array<std::string, 5> strings) : identityStrings(std::move(strings)) {}

    void registerCommands(Dispatcher& dispatcher);

    /// Whether the adapter has left its application firmware, and with it the USB bus.
    [[nodiscard]] bool inBootMode() const { return bootMode; }

private:
    Answer getUsbString(ByteReader& request) const;
    Answer enterBootMode(ByteReader& request);

    std::array<std::string, 5> identityStrings;
    bool bootMode = false;
};

} // namespace virtual_adapter
