#include "model/Outbox.hpp"

#include <utility>

namespace virtual_adapter {

void Outbox::push(CommandCode code, const Bytes& payload) {
    Frame frame{0, 0};
    appendU16(frame, static_cast<uint16_t>(code));
    frame.insert(frame.end(), {0, 0});
    frame.insert(frame.end(), payload.begin(), payload.end());
    frames.push_back(std::move(frame));
}

std::vector<Frame> Outbox::take() {
    return std::exchange(frames, {});
}

} // namespace virtual_adapter
