#include "model/system/system.hpp"

namespace virtual_adapter {

void System::registerCommands(Dispatcher& dispatcher) {
    dispatcher.on(CommandCode::GetUsbString,
                  [this](ByteReader& request) { return getUsbString(request); });
    dispatcher.on(CommandCode::EnterBootMode,
                  [this](ByteReader& request) { return enterBootMode(request); });
}

Answer System::getUsbString(ByteReader& request) const {
    const size_t index = request.u8();
    if (!request.consumedExactly()) {
        return Status::MalformedRequest;
    }
    if (index < 1 || index > identityStrings.size()) {
        // The length byte counts itself: an empty string for readers that ignore the status.
        return {Status::InvalidParameter, {1}};
    }
    const std::string& text = identityStrings.at(index - 1);
    Bytes payload{static_cast<uint8_t>(text.size() + 1)};
    payload.insert(payload.end(), text.begin(), text.end());
    return {Status::Success, payload};
}

Answer System::enterBootMode(ByteReader& request) {
    if (!request.consumedExactly()) {
        return Status::MalformedRequest;
    }
    bootMode = true;
    return Status::Success;
}

} // namespace virtual_adapter
