// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "operations.hpp"

#include "Arguments.hpp"

#include <array>
#include <functional>

namespace fuzzing {

namespace {

using Call = void (*)(VeltraSDK_Handle*, Input&);

template <typename... Parameters>
void call(VeltraSDK_Handle* handle, int16_t (*function)(VeltraSDK_Handle*, Parameters...),
          Input& input) {
    callWithArguments(handle, function, input, static_cast<std::tuple<Parameters...>*>(nullptr));
}

/// A function whose arguments are values, or null or one byte to be written.
template <auto Function>
constexpr Call calling =
    [](VeltraSDK_Handle* handle, Input& input) { call(handle, Function, input); };

/// An input buffer and its length. Null announces a length too, where that is refused.
class Sent {
public:
    explicit Sent(Input& input) : isNull(input.number<bool>()), content(input.twoPartBytes()) {}

    [[nodiscard]] const uint8_t* data() const { return isNull ? nullptr : content.data(); }
    template <typename Length>
    [[nodiscard]] Length length() const {
        return static_cast<Length>(content.size());
    }
    /// For the functions that want a buffer.
    [[nodiscard]] const uint8_t* always() const { return content.data(); }

private:
    bool isNull;
    Bytes content;
};

/// The room that an adapter which is not trusted may use, or null.
class Room {
public:
    Room(Input& input, size_t size) : isNull(input.number<bool>()), bytes(size) {}
    uint8_t* data() { return isNull ? nullptr : bytes.data(); }

private:
    bool isNull;
    Bytes bytes;
};

constexpr size_t maxTransferred = 0xFFFF;
constexpr size_t maxFromCcc = 0xFF;

/// Where a count is stored, or null.
class Count {
public:
    explicit Count(Input& input) : isNull(input.number<bool>()) {}
    uint16_t* get() { return isNull ? nullptr : &value; }

private:
    bool isNull;
    uint16_t value = 0;
};

void getDeviceInfo(VeltraSDK_Handle* handle, Input& /*input*/) {
    VeltraSDK_DeviceInfo info{};
    if (VeltraSDK_GetDeviceInfo(handle, &info) == ResultCode_Success) {
        for (const char* const text : {info.usbString1, info.usbString2, info.usbString3,
                                       info.usbString4, info.usbString5}) {
            delete[] text;
        }
    }
}

void getUsbString(VeltraSDK_Handle* handle, Input& input) {
    const auto index = input.byte();
    const auto capacity = input.byte();
    std::vector<char> text(capacity);
    VeltraSDK_GetUsbString(handle, index, input.number<bool>() ? nullptr : text.data(), capacity);
}

void i2cScanBus(VeltraSDK_Handle* handle, Input& input) {
    const auto size = input.byte();
    Room addresses(input, size);
    Argument<uint8_t*> sevenBitCount(input);
    Argument<uint8_t*> tenBitCount(input);
    const auto busIndex = input.byte();
    VeltraSDK_I2cScanBus(handle, addresses.data(), size, sevenBitCount.get(), tenBitCount.get(),
                         busIndex, input.number<bool>());
}

void i2cWrite(VeltraSDK_Handle* handle, Input& input) {
    const auto busIndex = input.byte();
    const auto address = input.byte();
    const Sent registerAddress(input);
    const Sent data(input);
    VeltraSDK_I2cWrite(handle, busIndex, address, registerAddress.data(),
                       registerAddress.length<uint8_t>(), data.data(), data.length<uint32_t>(),
                       input.number<bool>());
}

void i2cRead(VeltraSDK_Handle* handle, Input& input) {
    const auto busIndex = input.byte();
    const auto address = input.byte();
    const Sent registerAddress(input);
    const auto length = input.number<uint16_t>();
    Room data(input, length);
    VeltraSDK_I2cRead(handle, busIndex, address, registerAddress.data(),
                      registerAddress.length<uint8_t>(), length, data.data(), input.number<bool>());
}

void spiTransfer(VeltraSDK_Handle* handle, Input& input) {
    const Sent sent(input);
    const auto length = input.number<uint16_t>();
    Room received(input, maxTransferred);
    VeltraSDK_SpiTransfer(handle, sent.data(), sent.length<uint16_t>(), received.data(), length);
}

void uartSendMessage(VeltraSDK_Handle* handle, Input& input) {
    const Sent message(input);
    VeltraSDK_UartSendMessage(handle, message.always(), message.length<uint16_t>());
}

void gpioDigitalRead(VeltraSDK_Handle* handle, Input& input) {
    auto level = GpioLogicLevel_Low;
    VeltraSDK_GpioDigitalRead(handle, input.number<GpioPinNumber>(), &level);
}

void i3cInitBus(VeltraSDK_Handle* handle, Input& input) {
    Argument<std::vector<I3cTargetInfo>> targets(input);
    targets.value.resize(std::min(targets.value.size(), maxFromCcc));
    VeltraSDK_I3cInitBus(handle, targets.value.data(), static_cast<uint8_t>(targets.value.size()));
}

void i3cGetDeviceTable(VeltraSDK_Handle* handle, Input& input) {
    const auto capacity = input.byte();
    std::vector<I3cTargetInfo> table(capacity);
    Argument<uint8_t*> count(input);
    VeltraSDK_I3cGetDeviceTable(handle, input.number<bool>() ? nullptr : table.data(), capacity,
                                count.get());
}

template <auto Function>
void i3cWrite(VeltraSDK_Handle* handle, Input& input) {
    const auto address = input.byte();
    const Sent subAddress(input);
    const Sent data(input);
    Function(handle, address, subAddress.data(), subAddress.length<uint8_t>(), data.data(),
             data.length<uint16_t>(), input.number<I3cTransferFlags>());
}

template <auto Function>
void i3cRead(VeltraSDK_Handle* handle, Input& input) {
    const auto address = input.byte();
    const Sent subAddress(input);
    const auto length = input.number<uint16_t>();
    Room data(input, maxTransferred);
    Count count(input);
    Function(handle, address, subAddress.data(), subAddress.length<uint8_t>(), length, data.data(),
             count.get(), input.number<I3cTransferFlags>());
}

void i3cHdrDdrWrite(VeltraSDK_Handle* handle, Input& input) {
    const auto address = input.byte();
    const auto command = input.byte();
    const Sent data(input);
    VeltraSDK_I3cHdrDdrWrite(handle, address, command, data.data(), data.length<uint16_t>());
}

void i3cHdrDdrRead(VeltraSDK_Handle* handle, Input& input) {
    const auto address = input.byte();
    const auto command = input.byte();
    const auto length = input.number<uint16_t>();
    Room data(input, maxTransferred);
    Count count(input);
    VeltraSDK_I3cHdrDdrRead(handle, address, command, length, count.get(), data.data());
}

void i3cCccGetpid(VeltraSDK_Handle* handle, Input& input) {
    const auto address = input.byte();
    Room pid(input, maxFromCcc);
    VeltraSDK_I3cCccGETPID(handle, address, pid.data());
}

void i3cCccGetmwl(VeltraSDK_Handle* handle, Input& input) {
    const auto address = input.byte();
    Count mwl(input);
    VeltraSDK_I3cCccGETMWL(handle, address, mwl.get());
}

void i3cCccGetmrl(VeltraSDK_Handle* handle, Input& input) {
    const auto address = input.byte();
    Count mrl(input);
    Argument<uint8_t*> ibiPayloadSize(input);
    Argument<uint8_t*> hasIbiPayloadSize(input);
    VeltraSDK_I3cCccGETMRL(handle, address, mrl.get(), ibiPayloadSize.get(),
                           hasIbiPayloadSize.get());
}

template <auto Function>
void i3cCccQuery(VeltraSDK_Handle* handle, Input& input) {
    const auto address = input.byte();
    Room reply(input, maxFromCcc);
    Argument<uint8_t*> count(input);
    const auto hasDefiningByte = input.number<bool>();
    Function(handle, address, reply.data(), count.get(), hasDefiningByte, input.byte());
}

void i3cCccSetaasa(VeltraSDK_Handle* handle, Input& input) {
    const Sent addresses(input);
    VeltraSDK_I3cCccSETAASA(handle, addresses.always(), addresses.length<size_t>());
}

void i3cCccTransfer(VeltraSDK_Handle* handle, Input& input) {
    const auto address = input.byte();
    const auto direction = input.number<I3cTransferDirection>();
    const auto mode = input.number<I3cTransferMode>();
    const auto optionFlag = input.number<bool>();
    const auto type = input.number<I3cCccType>();
    const auto length = input.byte();
    const auto code = input.number<CCC>();
    const auto definingByte = input.byte();
    const Sent data(input);
    const auto capacity = input.byte();
    Room reply(input, capacity);
    Argument<uint8_t*> replyLength(input);
    VeltraSDK_I3cCccTransfer(handle, address, direction, mode, optionFlag, type, length, code,
                             definingByte, data.data(), data.length<uint32_t>(), reply.data(),
                             capacity, replyLength.get());
}

constexpr std::array calls{
    Call{getDeviceInfo},
    calling<VeltraSDK_EnterBootMode>,
    calling<VeltraSDK_I2cSetBusVoltage>,
    calling<VeltraSDK_I2cControllerInit>,
    calling<VeltraSDK_I2cSetParameters>,
    calling<VeltraSDK_I2cSetPullUpResistors>,
    Call{i2cScanBus},
    Call{i2cWrite},
    Call{i2cRead},
    calling<VeltraSDK_SpiSetBusVoltage>,
    calling<VeltraSDK_SpiControllerInit>,
    calling<VeltraSDK_SpiSetParameters>,
    Call{spiTransfer},
    calling<VeltraSDK_UartSetBusVoltage>,
    calling<VeltraSDK_UartInit>,
    calling<VeltraSDK_UartSetParameters>,
    Call{uartSendMessage},
    calling<VeltraSDK_GpioSetVoltage>,
    calling<VeltraSDK_GpioConfigurePin>,
    calling<VeltraSDK_GpioDigitalWrite>,
    Call{gpioDigitalRead},
    calling<VeltraSDK_GpioConfigureInterrupt>,
    calling<VeltraSDK_GpioDisableInterrupt>,
    calling<VeltraSDK_I3cSetBusVoltage>,
    calling<VeltraSDK_I3cControllerInit>,
    calling<VeltraSDK_I3cSetParameters>,
    calling<VeltraSDK_I3cResetBus>,
    Call{i3cInitBus},
    Call{i3cGetDeviceTable},
    calling<VeltraSDK_I3cSetTargetDeviceConfiguration>,
    Call{i3cWrite<VeltraSDK_I3cSdrWrite>},
    Call{i3cRead<VeltraSDK_I3cSdrRead>},
    Call{i3cHdrDdrWrite},
    Call{i3cHdrDdrRead},
    Call{i3cWrite<VeltraSDK_I3cLegacyI2CWrite>},
    Call{i3cRead<VeltraSDK_I3cLegacyI2CRead>},
    calling<VeltraSDK_I3cTargetResetPattern>,
    calling<VeltraSDK_I3cHdrExitPattern>,
    Call{i3cCccGetpid},
    calling<VeltraSDK_I3cCccGETBCR>,
    calling<VeltraSDK_I3cCccGETDCR>,
    Call{i3cCccGetmwl},
    Call{i3cCccGetmrl},
    Call{i3cCccQuery<VeltraSDK_I3cCccGETCAPS>},
    Call{i3cCccQuery<VeltraSDK_I3cCccGETSTATUS>},
    calling<VeltraSDK_I3cCccSETMWLDirect>,
    calling<VeltraSDK_I3cCccSETMWLBroadcast>,
    calling<VeltraSDK_I3cCccSETMRLDirect>,
    calling<VeltraSDK_I3cCccSETMRLBroadcast>,
    calling<VeltraSDK_I3cCccSETNEWDA>,
    calling<VeltraSDK_I3cCccSETDASA>,
    Call{i3cCccSetaasa},
    calling<VeltraSDK_I3cCccENECDirect>,
    calling<VeltraSDK_I3cCccENECBroadcast>,
    calling<VeltraSDK_I3cCccDISECDirect>,
    calling<VeltraSDK_I3cCccDISECBroadcast>,
    calling<VeltraSDK_I3cCccRSTACTDirect>,
    calling<VeltraSDK_I3cCccRSTACTBroadcast>,
    calling<VeltraSDK_I3cCccRSTDAA>,
    calling<VeltraSDK_I3cCccENTDAA>,
    Call{i3cCccTransfer},
    Call{getUsbString},
    Call{[](VeltraSDK_Handle* handle, Input& /*input*/) { VeltraSDK_Connect(handle, nullptr); }},
    Call{[](VeltraSDK_Handle* handle, Input& /*input*/) {
        VeltraSDK_ConnectWithSerialNumber(handle, "VA-0001");
    }},
    Call{[](VeltraSDK_Handle* handle, Input& /*input*/) { VeltraSDK_Disconnect(handle); }},
};

} // namespace

void callFunction(VeltraSDK_Handle* handle, Input& input) {
    calls[input.byte() % calls.size()](handle, input);
}

} // namespace fuzzing
