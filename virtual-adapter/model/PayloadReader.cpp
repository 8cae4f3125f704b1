#include "model/PayloadReader.hpp"

#include <algorithm>

namespace virtual_adapter {

uint8_t PayloadReader::u8() {
    if (position >= frame.size()) {
        overrun = true;
        return 0;
    }
    return frame[position++];
}

uint16_t PayloadReader::u16() {
    const unsigned low = u8();
    const unsigned high = u8();
    return static_cast<uint16_t>(low | high << 8U);
}

uint32_t PayloadReader::u32() {
    const uint32_t low = u16();
    const uint32_t high = u16();
    return low | high << 16U;
}

Bytes PayloadReader::bytes(size_t count) {
    const size_t available = std::min(count, remaining());
    const auto first = frame.end() - static_cast<Frame::difference_type>(remaining());
    Bytes result(first, first + static_cast<Frame::difference_type>(available));
    result.resize(count);
    position += available;
    overrun = overrun || available < count;
    return result;
}

Bytes PayloadReader::rest() {
    return bytes(remaining());
}

size_t PayloadReader::remaining() const {
    return frame.size() - std::min(position, frame.size());
}

} // namespace virtual_adapter
