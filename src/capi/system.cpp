// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Handle.hpp"
#include "capi/Marshalling.hpp"

#include <algorithm>
#include <memory>
#include <string>

namespace {

/// Callers release it with delete[].
using Text = std::unique_ptr<char[]>;

Text terminatedCopy(const std::string& text) {
    Text copy(new char[text.size() + 1]);
    *std::copy(text.begin(), text.end(), copy.get()) = '\0';
    return copy;
}

} // namespace

int16_t VeltraSDK_GetDeviceInfo(VeltraSDK_Handle* handle, VeltraSDK_DeviceInfo* info) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        VeltraSDK::DeviceInfo read;
        const uint16_t result = sdk.getDeviceInfo(read);
        if (result == ResultCode_Success) {
            // All copies are made before any is handed out: a failing allocation leaves the
            // caller's record as it was.
            Text text1 = terminatedCopy(read.usbString1);
            Text text2 = terminatedCopy(read.usbString2);
            Text text3 = terminatedCopy(read.usbString3);
            Text text4 = terminatedCopy(read.usbString4);
            Text text5 = terminatedCopy(read.usbString5);
            *info = {text1.release(),        read.usbString1.size(), text2.release(),
                     read.usbString2.size(), text3.release(),        read.usbString3.size(),
                     text4.release(),        read.usbString4.size(), text5.release(),
                     read.usbString5.size()};
        }
        return result;
    });
}

int16_t VeltraSDK_GetUsbString(VeltraSDK_Handle* handle, uint8_t index, char* text,
                               size_t capacity) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) -> uint16_t {
        if (text == nullptr) {
            return ResultCode_InvalidArgument;
        }
        const uint16_t result = sdk.getUsbString(buffers.received, index);
        if (result != ResultCode_Success) {
            return result;
        }
        if (buffers.received.size() >= capacity) {
            return ResultCode_InvalidArgument;
        }
        *std::copy(buffers.received.begin(), buffers.received.end(), text) = '\0';
        return result;
    });
}

int16_t VeltraSDK_EnterBootMode(VeltraSDK_Handle* handle) {
    return withSdk(handle, [](VeltraSDK& sdk) { return sdk.enterBootMode(); });
}
