#include "model/Dispatcher.hpp"

namespace virtual_adapter {

namespace {

constexpr size_t identifierSize = 2;
constexpr size_t headerSize = 4;

} // namespace

Frame Dispatcher::respond(const Frame& request) const {
    if (request.size() < headerSize) {
        return {};
    }
    ByteReader reader(request);
    reader.skip(identifierSize);
    const auto handler = handlers.find(static_cast<CommandCode>(reader.u16()));
    const Answer answer =
        handler == handlers.end() ? Answer(Status::UnknownCommand) : handler->second(reader);

    Frame response(request.begin(), request.begin() + headerSize);
    appendU16(response, static_cast<uint16_t>(answer.status));
    response.insert(response.end(), answer.payload.begin(), answer.payload.end());
    return response;
}

} // namespace virtual_adapter
