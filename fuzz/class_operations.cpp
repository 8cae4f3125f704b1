// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "operations.hpp"

#include "Arguments.hpp"
#include "consume.hpp"

#include <array>
#include <functional>

namespace fuzzing {

namespace {

using Call = void (*)(VeltraSDK&, Input&);

template <typename... Parameters>
void call(VeltraSDK& sdk, uint16_t (VeltraSDK::*operation)(Parameters...), Input& input) {
    callWithArguments(sdk, operation, input, static_cast<std::tuple<Parameters...>*>(nullptr));
}

template <auto Operation>
constexpr Call calling = [](VeltraSDK& sdk, Input& input) { call(sdk, Operation, input); };

constexpr std::array calls{
    calling<&VeltraSDK::getUsbString>,
    calling<&VeltraSDK::getDeviceInfo>,
    calling<&VeltraSDK::enterBootMode>,
    calling<&VeltraSDK::i2cSetBusVoltage>,
    calling<&VeltraSDK::i2cControllerInit>,
    calling<&VeltraSDK::i2cSetParameters>,
    calling<&VeltraSDK::i2cSetPullUpResistors>,
    calling<&VeltraSDK::i2cScanBus>,
    calling<&VeltraSDK::i2cWrite>,
    calling<&VeltraSDK::i2cRead>,
    calling<&VeltraSDK::spiSetBusVoltage>,
    calling<&VeltraSDK::spiControllerInit>,
    calling<&VeltraSDK::spiSetParameters>,
    calling<&VeltraSDK::spiTransfer>,
    calling<&VeltraSDK::uartSetBusVoltage>,
    calling<&VeltraSDK::uartInit>,
    calling<&VeltraSDK::uartSetParameters>,
    calling<&VeltraSDK::uartSendMessage>,
    calling<&VeltraSDK::gpioSetVoltage>,
    calling<&VeltraSDK::gpioConfigurePin>,
    calling<&VeltraSDK::gpioDigitalWrite>,
    calling<&VeltraSDK::gpioDigitalRead>,
    calling<&VeltraSDK::gpioConfigureInterrupt>,
    calling<&VeltraSDK::gpioDisableInterrupt>,
    calling<&VeltraSDK::i3cSetBusVoltage>,
    calling<&VeltraSDK::i3cControllerInit>,
    calling<&VeltraSDK::i3cSetParameters>,
    calling<&VeltraSDK::i3cResetBus>,
    calling<&VeltraSDK::i3cInitBus>,
    calling<&VeltraSDK::i3cGetDeviceTable>,
    calling<&VeltraSDK::i3cSetTargetDeviceConfiguration>,
    calling<&VeltraSDK::i3cSdrWrite>,
    calling<&VeltraSDK::i3cSdrRead>,
    calling<&VeltraSDK::i3cHdrDdrWrite>,
    calling<&VeltraSDK::i3cHdrDdrRead>,
    calling<&VeltraSDK::i3cLegacyI2cWrite>,
    calling<&VeltraSDK::i3cLegacyI2cRead>,
    calling<&VeltraSDK::i3cTargetResetPattern>,
    calling<&VeltraSDK::i3cHdrExitPattern>,
    calling<&VeltraSDK::i3cCccGETPID>,
    calling<&VeltraSDK::i3cCccGETBCR>,
    calling<&VeltraSDK::i3cCccGETDCR>,
    calling<&VeltraSDK::i3cCccGETMWL>,
    calling<&VeltraSDK::i3cCccGETMRL>,
    calling<&VeltraSDK::i3cCccGETCAPS>,
    calling<&VeltraSDK::i3cCccGETSTATUS>,
    calling<&VeltraSDK::i3cCccSETMWLDirect>,
    calling<&VeltraSDK::i3cCccSETMWLBroadcast>,
    calling<&VeltraSDK::i3cCccSETMRLDirect>,
    calling<&VeltraSDK::i3cCccSETMRLBroadcast>,
    calling<&VeltraSDK::i3cCccSETNEWDA>,
    calling<&VeltraSDK::i3cCccSETDASA>,
    calling<&VeltraSDK::i3cCccSETAASA>,
    calling<&VeltraSDK::i3cCccENECDirect>,
    calling<&VeltraSDK::i3cCccENECBroadcast>,
    calling<&VeltraSDK::i3cCccDISECDirect>,
    calling<&VeltraSDK::i3cCccDISECBroadcast>,
    calling<&VeltraSDK::i3cCccRSTACTDirect>,
    calling<&VeltraSDK::i3cCccRSTACTBroadcast>,
    calling<&VeltraSDK::i3cCccRSTDAA>,
    calling<&VeltraSDK::i3cCccENTDAA>,
    calling<&VeltraSDK::i3cCccTransfer>,
    Call{[](VeltraSDK& sdk, Input& /*input*/) { sdk.connect(""); }},
    Call{[](VeltraSDK& sdk, Input& /*input*/) { sdk.connectWithSerialNumber("VA-0001"); }},
    Call{[](VeltraSDK& sdk, Input& /*input*/) { sdk.disconnect(); }},
};

} // namespace

void callClassOperation(VeltraSDK& sdk, Input& input) {
    calls[input.byte() % calls.size()](sdk, input);
}

} // namespace fuzzing
