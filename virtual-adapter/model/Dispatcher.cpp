#include "model/Dispatcher.hpp"

namespace virtual_adapter {

namespace {

constexpr size_t headerSize = 4;

} // namespace

Frame Dispatcher::respond(const Frame& request) const {
    if (request.size() < headerSize) {
        return {};
    }
    PayloadReader header(request, 2);
    const auto handler = handlers.find(static_cast<CommandCode>(header.u16()));
    PayloadReader payload(request, headerSize);
    const Answer answer =
        handler == handlers.end() ? Answer(Status::UnknownCommand) : handler->second(payload);

    Frame response(request.begin(), request.begin() + headerSize);
    appendU16(response, static_cast<uint16_t>(answer.status));
    response.insert(response.end(), answer.payload.begin(), answer.payload.end());
    return response;
}

} // namespace virtual_adapter
