#include "model/system/voltage.hpp"

#include "model/checks.hpp"

#include <utility>

namespace virtual_adapter {

namespace {

constexpr unsigned lowestMillivolts = 800;
constexpr unsigned highestMillivolts = 3300;

} // namespace

void IoVoltage::registerCommands(Dispatcher& dispatcher) {
    dispatcher.on(CommandCode::SetI2cSpiUartGpioVoltage,
                  [this](ByteReader& request) { return set(request); });
}

Dispatcher::Handler IoVoltage::required(Dispatcher::Handler handler) const {
    return [this, handler = std::move(handler)](ByteReader& request) {
        return outputEnabled ? handler(request) : Answer(Status::NoVoltage);
    };
}

Answer IoVoltage::set(ByteReader& request) {
    const unsigned millivolts = request.u16();
    const unsigned enable = request.u8();
    const Status status =
        check(request, within(millivolts, lowestMillivolts, highestMillivolts) && enable <= 1);
    if (status == Status::Success) {
        outputEnabled = enable == 1;
    }
    return status;
}

} // namespace virtual_adapter
