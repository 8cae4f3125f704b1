// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/Answer.hpp"
#include "model/Frame.hpp"

#include "protocol/CommandCode.hpp"

#include <vector>

namespace virtual_adapter {

/// A frame on its way to the host.
struct CountedFrame {
    Frame frame;
    /// Which of its fields count what follows them.
    std::vector<ByteWriter::Field> counts;
};

/// What the adapter has to say about one request: the response, and behind it the notifications
/// that the request gave rise to, oldest first.
class Outbox {
public:
    /// @p code is the request's, known or not.
    void respond(uint16_t identifier, uint16_t code, const Answer& answer);
    void notify(CommandCode code, const ByteWriter& payload);

    /// Hands out everything and leaves the outbox empty.
    std::vector<CountedFrame> take();

private:
    std::vector<CountedFrame> frames;
};

} // namespace virtual_adapter
