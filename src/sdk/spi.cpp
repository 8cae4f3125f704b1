#include "sdk/Transaction.hpp"

namespace {

constexpr size_t receivedCountOffset = 6;
constexpr size_t receivedOffset = 8;

} // namespace

uint16_t VeltraSDK::spiSetBusVoltage(uint16_t millivolts, bool flag) {
    return transact([&](uint16_t id) { return asyncSdk->spiSetBusVoltage(id, millivolts, flag); });
}

uint16_t VeltraSDK::spiControllerInit(SpiBitOrder bitOrder, SpiMode mode, SpiDataWidth dataWidth,
                                      SpiChipSelect chipSelect, SpiChipSelectPolarity polarity,
                                      uint32_t clockHz) {
    return transact([&](uint16_t id) {
        return asyncSdk->spiControllerInit(id, bitOrder, mode, dataWidth, chipSelect, polarity,
                                           clockHz);
    });
}

uint16_t VeltraSDK::spiSetParameters(SpiBitOrder bitOrder, SpiMode mode, SpiDataWidth dataWidth,
                                     SpiChipSelect chipSelect, SpiChipSelectPolarity polarity,
                                     uint32_t clockHz) {
    return transact([&](uint16_t id) {
        return asyncSdk->spiSetParameters(id, bitOrder, mode, dataWidth, chipSelect, polarity,
                                          clockHz);
    });
}

uint16_t VeltraSDK::spiTransfer(std::vector<uint8_t>& send, std::vector<uint8_t>& received,
                                uint16_t length) {
    return transact([&](uint16_t id) { return asyncSdk->spiTransfer(id, send, length); },
                    [&](const ResponseFrame& response) {
                        response.copyTo(received, receivedOffset,
                                        response.u16(receivedCountOffset));
                    });
}
