#include "capi/Handle.hpp"
#include "capi/Marshalling.hpp"

int16_t VeltraSDK_SpiSetBusVoltage(VeltraSDK_Handle* handle, uint16_t millivolts, bool flag) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.spiSetBusVoltage(millivolts, flag); });
}

int16_t VeltraSDK_SpiControllerInit(VeltraSDK_Handle* handle, SpiBitOrder bitOrder, SpiMode mode,
                                    SpiDataWidth dataWidth, SpiChipSelect chipSelect,
                                    SpiChipSelectPolarity polarity, uint32_t clockHz) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.spiControllerInit(bitOrder, mode, dataWidth, chipSelect, polarity, clockHz);
    });
}

int16_t VeltraSDK_SpiSetParameters(VeltraSDK_Handle* handle, SpiBitOrder bitOrder, SpiMode mode,
                                   SpiDataWidth dataWidth, SpiChipSelect chipSelect,
                                   SpiChipSelectPolarity polarity, uint32_t clockHz) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.spiSetParameters(bitOrder, mode, dataWidth, chipSelect, polarity, clockHz);
    });
}

int16_t VeltraSDK_SpiTransfer(VeltraSDK_Handle* handle, const uint8_t* send, uint16_t sendLength,
                              uint8_t* receive, uint16_t length) {
    std::vector<uint8_t> sendBytes = copyIn(send, send == nullptr ? 0 : sendLength);
    return withSdk(handle, [&](VeltraSDK& sdk) {
        std::vector<uint8_t> received;
        const uint16_t result = sdk.spiTransfer(sendBytes, received, length);
        if (result == ResultCode_Success && receive != nullptr) {
            copyOut(received, receive);
        }
        return result;
    });
}
