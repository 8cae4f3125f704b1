#include "sdk/Transaction.hpp"

namespace {

constexpr size_t readCountOffset = 8;
constexpr size_t readDataOffset = 10;

/// The decoding of the three reads.
auto into(std::vector<uint8_t>& data) {
    return [&data](const ResponseFrame& response) {
        response.copyTo(data, readDataOffset, response.u16(readCountOffset));
    };
}

} // namespace

uint16_t VeltraSDK::i3cSdrWrite(uint8_t address, const std::vector<uint8_t>& subAddress,
                                const std::vector<uint8_t>& data, I3cTransferFlags flags) {
    return transact(
        [&](uint16_t id) { return asyncSdk->i3cSdrWrite(id, address, subAddress, data, flags); });
}

uint16_t VeltraSDK::i3cSdrRead(uint8_t address, const std::vector<uint8_t>& subAddress,
                               uint16_t length, std::vector<uint8_t>& data,
                               I3cTransferFlags flags) {
    return transact(
        [&](uint16_t id) { return asyncSdk->i3cSdrRead(id, address, subAddress, length, flags); },
        into(data));
}

uint16_t VeltraSDK::i3cHdrDdrWrite(uint8_t address, uint8_t hdrCommand,
                                   const std::vector<uint8_t>& data) {
    return transact(
        [&](uint16_t id) { return asyncSdk->i3cHdrDdrWrite(id, address, hdrCommand, data); });
}

uint16_t VeltraSDK::i3cHdrDdrRead(uint8_t address, uint8_t hdrCommand, uint16_t length,
                                  std::vector<uint8_t>& data) {
    return transact(
        [&](uint16_t id) { return asyncSdk->i3cHdrDdrRead(id, address, hdrCommand, length); },
        into(data));
}

uint16_t VeltraSDK::i3cLegacyI2cWrite(uint8_t address, const std::vector<uint8_t>& subAddress,
                                      const std::vector<uint8_t>& data, I3cTransferFlags flags) {
    return transact([&](uint16_t id) {
        return asyncSdk->i3cLegacyI2cWrite(id, address, subAddress, data, flags);
    });
}

uint16_t VeltraSDK::i3cLegacyI2cRead(uint8_t address, const std::vector<uint8_t>& subAddress,
                                     uint16_t length, std::vector<uint8_t>& data,
                                     I3cTransferFlags flags) {
    return transact(
        [&](uint16_t id) {
            return asyncSdk->i3cLegacyI2cRead(id, address, subAddress, length, flags);
        },
        into(data));
}

uint16_t VeltraSDK::i3cTargetResetPattern() {
    return transact([&](uint16_t id) { return asyncSdk->i3cTargetResetPattern(id); });
}

uint16_t VeltraSDK::i3cHdrExitPattern() {
    return transact([&](uint16_t id) { return asyncSdk->i3cHdrExitPattern(id); });
}
