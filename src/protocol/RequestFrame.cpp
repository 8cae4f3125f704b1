#include "protocol/RequestFrame.hpp"

namespace {

// The longest header with its fixed fields, that of the I2C and I3C transfers, is 14 bytes.
constexpr size_t fixedSize = 16;

} // namespace

RequestFrame::RequestFrame(uint16_t transactionId, CommandCode command, size_t dataSize) {
    frame.reserve(fixedSize + dataSize);
    u16(transactionId);
    u16(static_cast<uint16_t>(command));
}

RequestFrame& RequestFrame::u8(uint8_t value) {
    frame.push_back(value);
    return *this;
}

RequestFrame& RequestFrame::u16(uint16_t value) {
    return u8(static_cast<uint8_t>(value & 0xFFU)).u8(static_cast<uint8_t>(value >> 8U));
}

RequestFrame& RequestFrame::u32(uint32_t value) {
    return u16(static_cast<uint16_t>(value & 0xFFFFU)).u16(static_cast<uint16_t>(value >> 16U));
}

RequestFrame& RequestFrame::count16(size_t count) {
    return u16(static_cast<uint16_t>(count & 0xFFFFU));
}

RequestFrame& RequestFrame::flag(bool value) {
    return u8(value ? 1 : 0);
}

RequestFrame& RequestFrame::zeros(size_t count) {
    frame.insert(frame.end(), count, 0);
    return *this;
}

RequestFrame& RequestFrame::bytes(const std::vector<uint8_t>& values) {
    frame.insert(frame.end(), values.begin(), values.end());
    return *this;
}
