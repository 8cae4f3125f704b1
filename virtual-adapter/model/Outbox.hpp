#pragma once

#include "model/Frame.hpp"

#include "protocol/CommandCode.hpp"

namespace virtual_adapter {

/// What the adapter has to say of its own accord, oldest first.
class Outbox {
public:
    /// Appends a notification whose payload starts at frame byte 6.
    void push(CommandCode code, const Bytes& payload);

    /// Hands out everything queued and leaves the queue empty.
    std::vector<Frame> take();

private:
    std::vector<Frame> frames;
};

} // namespace virtual_adapter
