#include "model/PayloadReader.hpp"

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
    Bytes result;
    result.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        result.push_back(u8());
    }
    return result;
}

Bytes PayloadReader::rest() {
    return bytes(frame.size() > position ? frame.size() - position : 0);
}

} // namespace virtual_adapter
