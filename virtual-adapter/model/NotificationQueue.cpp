#include "model/NotificationQueue.hpp"

#include <utility>

namespace virtual_adapter {

void NotificationQueue::push(CommandCode code, const Bytes& payload) {
    const auto value = static_cast<uint16_t>(code);
    Frame frame{0, 0, static_cast<uint8_t>(value & 0xFFU), static_cast<uint8_t>(value >> 8U), 0, 0};
    frame.insert(frame.end(), payload.begin(), payload.end());
    frames.push_back(std::move(frame));
}

std::vector<Frame> NotificationQueue::take() {
    return std::exchange(frames, {});
}

} // namespace virtual_adapter
