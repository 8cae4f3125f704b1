// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/Adapter.hpp"

#include <utility>

namespace virtual_adapter {

Adapter::Adapter(const AdapterVariant& variant, const std::string& serialNumber, Board itsBoard)
    : board(std::move(itsBoard)), dispatcher(variant, serialNumber, board, outbox) {}

std::vector<CountedFrame> Adapter::handle(const Frame& request) {
    ByteReader reader(request);
    const uint16_t identifier = reader.u16();
    const uint16_t code = reader.u16();
    if (!reader.overran()) {
        outbox.respond(identifier, code, dispatcher.answer(static_cast<CommandCode>(code), reader));
    }
    return outbox.take();
}

} // namespace virtual_adapter
