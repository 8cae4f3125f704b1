// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Engine.hpp"

namespace {

constexpr size_t stringLengthOffset = 6;
constexpr size_t stringOffset = 7;
constexpr size_t maxStringAnswer = stringOffset + 254;

} // namespace

uint16_t VeltraSDK::getUsbString(std::vector<uint8_t>& text, uint8_t index) {
    auto question = engine->ask(maxStringAnswer, &VeltraAsyncSDK::getUsbString, index);
    return question.judged([&](const ResponseFrame& response) -> uint16_t {
        if (!response.answers(question.transactionId(), CommandCode::GetUsbString)) {
            return ResultCode_UnexpectedResponse;
        }
        // The length byte counts itself; 0 stands for the empty string too.
        const size_t length = response.u8(stringLengthOffset);
        response.copyTo(text, stringOffset, length == 0 ? 0 : length - 1);
        return ResultCode_Success;
    });
}

[[gnu::cold]] uint16_t VeltraSDK::getDeviceInfo(DeviceInfo& info) {
    if (!engine->hasLink()) {
        return ResultCode_NotConnected;
    }
    const StrictEngine::Presence presence = engine->stay();
    uint8_t index = 0;
    for (std::string* const field : {&info.usbString1, &info.usbString2, &info.usbString3,
                                     &info.usbString4, &info.usbString5}) {
        std::vector<uint8_t> text;
        const uint16_t result = getUsbString(text, ++index);
        if (result != ResultCode_Success) {
            return result;
        }
        field->assign(text.begin(), text.end());
    }
    return ResultCode_Success;
}

uint16_t VeltraSDK::enterBootMode() {
    return engine->enterBootMode();
}
