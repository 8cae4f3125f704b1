// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/Outbox.hpp"

#include <utility>

namespace virtual_adapter {

namespace {

CountedFrame framed(uint16_t identifier, uint16_t code, Status status, const ByteWriter& payload) {
    ByteWriter frame;
    frame.u16(identifier).u16(code).u16(static_cast<uint16_t>(status)).append(payload);
    std::vector<ByteWriter::Field> counts = frame.counts();
    return {frame.take(), std::move(counts)};
}

} // namespace

void Outbox::respond(uint16_t identifier, uint16_t code, const Answer& answer) {
    frames.insert(frames.begin(), framed(identifier, code, answer.status, answer.payload));
}

void Outbox::notify(CommandCode code, const ByteWriter& payload) {
    constexpr uint16_t noIdentifier = 0;
    frames.push_back(framed(noIdentifier, static_cast<uint16_t>(code), Status::Success, payload));
}

std::vector<CountedFrame> Outbox::take() {
    return std::exchange(frames, {});
}

} // namespace virtual_adapter
