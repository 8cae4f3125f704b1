#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Frame.hpp"
#include "model/Status.hpp"

#include "protocol/CommandCode.hpp"

#include <functional>
#include <map>
#include <utility>

namespace virtual_adapter {

/// What a command answers: the status, and the payload from response byte 6 on.
struct Answer {
    // NOLINTNEXTLINE(google-explicit-constructor): `return Status::X;`
    Answer(Status answered) : status(answered) {}
    Answer(Status answered, Bytes data) : status(answered), payload(std::move(data)) {}

    Status status;
    Bytes payload;
};

/// The commands that the adapter knows. Each family registers its own.
class Dispatcher {
public:
    using Handler = std::function<Answer(ByteReader&)>;

    void on(CommandCode command, Handler handler) { handlers[command] = std::move(handler); }

    /// The response frame to a request frame. A request without a whole header has none.
    [[nodiscard]] Frame respond(const Frame& request) const;

private:
    std::map<CommandCode, Handler> handlers;
};

} // namespace virtual_adapter
