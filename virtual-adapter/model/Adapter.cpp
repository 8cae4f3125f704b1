#include "model/Adapter.hpp"

namespace virtual_adapter {

Adapter::Adapter(const AdapterVariant& variant, const std::string& serialNumber)
    : system({"Veltra", variant.name, serialNumber, "virtual", "1.0.0"}),
      uart(voltage, notifications, variant) {
    system.registerCommands(dispatcher);
    voltage.registerCommands(dispatcher);
    i2c.registerCommands(dispatcher);
    spi.registerCommands(dispatcher);
    uart.registerCommands(dispatcher);
    gpio.registerCommands(dispatcher);
    i3cBusSetup.registerCommands(dispatcher);
    i3cTransfer.registerCommands(dispatcher);
    i3cCcc.registerCommands(dispatcher);
}

std::vector<Frame> Adapter::handle(const Frame& request) {
    std::vector<Frame> frames;
    Frame response = dispatcher.respond(request);
    if (!response.empty()) {
        frames.push_back(std::move(response));
    }
    for (Frame& notification : notifications.take()) {
        frames.push_back(std::move(notification));
    }
    return frames;
}

} // namespace virtual_adapter
