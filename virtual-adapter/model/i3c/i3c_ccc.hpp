#pragma once

#include "model/i3c/I3cCccCommand.hpp"
#include "model/i3c/I3cController.hpp"

namespace virtual_adapter {

/// The Common Command Codes.
class I3cCcc {
public:
    explicit I3cCcc(I3cController& ofTheBus) : controller(ofTheBus) {}

    void registerCommands(Dispatcher& dispatcher);

private:
    Answer transfer(ByteReader& request);

    Status carryOut(const I3cCccCommand& command, Bytes& received);
    Status broadcast(const I3cCccCommand& command);
    Status write(const I3cCccCommand& command);
    Status read(const I3cCccCommand& command, Bytes& received);

    I3cController& controller;
};

} // namespace virtual_adapter
