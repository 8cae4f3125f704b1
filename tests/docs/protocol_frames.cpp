// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Prints what the library sends and how it reads what it receives, field by field, under the names
// of docs/protocol.md: check_protocol.py compares the two. Every argument has a value of its own,
// and every byte received the value of its offset, so that no field can be taken for another.

#include "driver/UsbTransferProtocol.hpp"
#include "protocol/ResponseFrame.hpp"
#include "support/Variant.hpp"

#include <veltrasdk/VeltraAsyncSDK.hpp>
#include <veltrasdk/VeltraSDK.hpp>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

using namespace test_support;

namespace {

/// The fields of a payload: names and bytes.
using Fields = std::vector<std::pair<std::string, Bytes>>;

void require(bool condition, const std::string& what) {
    if (!condition) {
        std::cerr << what << "\n";
        std::exit(EXIT_FAILURE);
    }
}

std::string hexadecimal(const Bytes& bytes) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const uint8_t byte : bytes) {
        text += digits[byte >> 4U];
        text += digits[byte & 0xFU];
    }
    return text;
}

/// @p fields reads `name=bytes, name=bytes`; a word of the page may stand for the bytes.
void print(const std::string& kind, const std::string& content, const std::string& fields = "") {
    std::cout << kind << "\t" << content << "\t" << fields << "\n";
}

std::string text(const Fields& fields) {
    std::string listed;
    for (const auto& [name, bytes] : fields) {
        listed += (listed.empty() ? "" : ", ") + name + "=" + hexadecimal(bytes);
    }
    return listed;
}

Bytes oneByte(size_t value) {
    return {static_cast<uint8_t>(value & 0xFFU)};
}

Bytes twoBytes(size_t value) {
    return {static_cast<uint8_t>(value & 0xFFU), static_cast<uint8_t>(value >> 8U & 0xFFU)};
}

/// The beginning of data that is too long to be printed.
Bytes beginOf(const uint8_t* data) {
    return {data[0], data[1]};
}

void attach(ScriptedHid& hid, const Variant& variant) {
    hid.attach({"1-1:1.0", vendorId, variant.productId, L"VA-0001"});
}

/// The encoders, each called with arguments that differ.
class Requests {
public:
    Requests() {
        attach(hid, highSpeed);
        require(sdk.connect(""), "the scripted adapter is not found");
    }

    void printAll() {
        printVoltages();
        printI2c();
        printSpi();
        printUart();
        printGpio();
        printI3cBus();
        printI3cTransfers();
        printI3cCccs();
        sent(sdk.getUsbString(id, 0x11), "index=11");
        sent(sdk.enterBootMode(id), "");
    }

private:
    static constexpr uint16_t id = 0x0201;

    /// What an encoder has just sent, given its result and the fields that it was called for.
    void sent(uint16_t result, const std::string& fields) {
        const std::vector<Bytes> reports = hid.writes();
        require(result == ResultCode_Success && reports.size() == ++requests,
                "a request is not one report");
        const Bytes& report = reports.back();
        const auto frame = report.begin() + 3;
        const Bytes content(frame, frame + (report[1] | report[2] << 8) / 4);
        print("request", hexadecimal(content), fields);
    }

    void printVoltages() {
        sent(sdk.i3cSetBusVoltage(id, 0x2211), "mV=1122");
        sent(sdk.setI2cSpiUartGpioVoltage(id, 0x2211, true), "mV=1122, flag=01");
        sent(sdk.i2cSetBusVoltage(id, 0x2211, true), "mV=1122, flag=01");
        sent(sdk.spiSetBusVoltage(id, 0x2211, true), "mV=1122, flag=01");
        sent(sdk.uartSetBusVoltage(id, 0x2211, true), "mV=1122, flag=01");
        sent(sdk.gpioSetVoltage(id, 0x2211, true), "mV=1122, flag=01");
    }

    void printI2c() {
        const std::string parameters = "bus index=11, clock in Hz=21222324, option=33";
        sent(sdk.i2cSetPullUpResistors(id, 0x11, 0x22), "bus index=11, setting=22");
        sent(sdk.i2cControllerInit(id, 0x11, 0x24232221, 0x33), parameters);
        sent(sdk.i2cSetParameters(id, 0x11, 0x24232221, 0x33), parameters);
        sent(sdk.i2cWrite(id, 0x11, 0x22, {0x12, 0x34}, data, true),
             "bus index=11, data length=0200, target address=22, register-address length=02, "
             "register address=34120000, flag=01, data=D1D2");
        sent(sdk.i2cRead(id, 0x11, 0x22, {0x12, 0x34}, 0x5544, true),
             "bus index=11, length to read=4455, target address=22, register-address length=02, "
             "register address=34120000, flag=01");
        sent(sdk.i2cScanBus(id, 0x11, true), "bus index=11, flag=01");
    }

    void printSpi() {
        const auto order = static_cast<SpiBitOrder>(0x11);
        const auto mode = static_cast<SpiMode>(0x22);
        const auto width = static_cast<SpiDataWidth>(0x33);
        const auto select = static_cast<SpiChipSelect>(0x44);
        const auto polarity = static_cast<SpiChipSelectPolarity>(0x55);
        const std::string parameters = "bit order=11, mode=22, data width=33, chip select=44, "
                                       "polarity=55, clock in Hz=61626364";
        sent(sdk.spiControllerInit(id, order, mode, width, select, polarity, 0x64636261),
             parameters);
        sent(sdk.spiSetParameters(id, order, mode, width, select, polarity, 0x64636261),
             parameters);
        sent(sdk.spiTransfer(id, data, 0x5544),
             "number of bytes to send=0200, requested length=4455, bytes=D1D2");
    }

    void printUart() {
        const auto baudRate = static_cast<UartBaudRate>(0x11);
        const auto handshake = static_cast<UartHwHandshake>(0x22);
        const auto parity = static_cast<UartParity>(0x33);
        const auto dataSize = static_cast<UartDataSize>(0x44);
        const auto stopBit = static_cast<UartStopBit>(0x55);
        const std::string parameters =
            "baud rate=11, handshake=22, parity=33, data size=44, stop bits=55";
        sent(sdk.uartInit(id, baudRate, handshake, parity, dataSize, stopBit), parameters);
        sent(sdk.uartSetParameters(id, baudRate, handshake, parity, dataSize, stopBit), parameters);
        sent(sdk.uartSendMessage(id, data), "number of bytes=0200, bytes=D1D2");
    }

    void printGpio() {
        const auto pin = static_cast<GpioPinNumber>(0x11);
        const auto level = static_cast<GpioLogicLevel>(0x22);
        const auto trigger = static_cast<GpioTriggerType>(0x22);
        sent(sdk.gpioConfigurePin(id, pin, GpioFunctionality_Output, level),
             "pin=11, functionality=01, level=22");
        sent(sdk.gpioConfigurePin(id, pin, GpioFunctionality_OpenDrainOutput, level),
             "pin=11, functionality=04");
        sent(sdk.gpioDigitalWrite(id, pin, level), "pin=11, level=22");
        sent(sdk.gpioDigitalRead(id, pin), "pin=11");
        sent(sdk.gpioConfigureInterrupt(id, pin, trigger), "pin=11, trigger=22");
        sent(sdk.gpioDisableInterrupt(id, pin), "pin=11");
    }

    void printI3cBus() {
        const std::string parameters =
            "push-pull rate=11, open-drain rate=22, I2C rate=33, drive strength=44";
        const I3cTargetInfo record{0x11, 0x22, {1, 2, 3, 4, 5, 6}, 0x33, 0x44, 0x5655, 0x6665,
                                   0x77, 0x88};
        const auto configuration = static_cast<I3cTargetConfiguration>(0x22);
        sent(sdk.i3cControllerInit(id, 0x11, 0x22, 0x33, 0x44), parameters);
        sent(sdk.i3cSetParameters(id, 0x11, 0x22, 0x33, 0x44), parameters);
        sent(sdk.i3cInitBus(id, {record}),
             "number of records=01, static address=11, dynamic address=22, PID=010203040506, "
             "BCR=33, DCR=44, maximum write length=5556, maximum read length=6566, "
             "maximum IBI payload=77, configuration=88");
        sent(sdk.i3cResetBus(id), "");
        sent(sdk.i3cGetDeviceTable(id), "");
        sent(sdk.i3cSetTargetDeviceConfiguration(id, 0x11, configuration),
             "address=11, configuration=22");
    }

    void printI3cTransfers() {
        const Bytes subAddress{0x51, 0x52, 0x53};
        const auto flags = static_cast<I3cTransferFlags>(0x15);
        const std::string addressed = "target address=11, flags=15, HDR command code=00, "
                                      "sub-address length=03, sub-address=51525300, ";
        const std::string hdr = "target address=11, flags=00, HDR command code=22, "
                                "sub-address length=00, sub-address=00000000, mode=HDR-DDR, ";
        const std::string written = "direction=write, number of bytes=0200, data=D1D2";
        const std::string read = "direction=read, number of bytes=4455, data=";
        sent(sdk.i3cSdrWrite(id, 0x11, subAddress, data, flags),
             addressed + "mode=SDR, " + written);
        sent(sdk.i3cSdrRead(id, 0x11, subAddress, 0x5544, flags), addressed + "mode=SDR, " + read);
        sent(sdk.i3cHdrDdrWrite(id, 0x11, 0x22, data), hdr + written);
        sent(sdk.i3cHdrDdrRead(id, 0x11, 0x22, 0x5544), hdr + read);
        sent(sdk.i3cLegacyI2cWrite(id, 0x11, subAddress, data, flags),
             addressed + "mode=legacy I2C, " + written);
        sent(sdk.i3cLegacyI2cRead(id, 0x11, subAddress, 0x5544, flags),
             addressed + "mode=legacy I2C, " + read);
        sent(sdk.i3cTargetResetPattern(id), "pattern=target reset");
        sent(sdk.i3cHdrExitPattern(id), "pattern=HDR exit");
    }

    void printI3cCccs() {
        const auto code = static_cast<CCC>(0x33);
        sent(sdk.i3cCccTransfer(id, 0x11, I3cTransferDirection_Write, I3cTransferMode_Sdr, true,
                                I3cCccType_WithDefiningByte, 0x22, code, 0x44, data),
             "target address=11, direction=write, mode=SDR, option=01, type=with defining byte, "
             "length=22, code=33, defining byte=44, data=D1D2");
        sent(sdk.i3cCccTransfer(id, 0x11, I3cTransferDirection_Read, I3cTransferMode_HdrDdr, false,
                                I3cCccType_WithDefiningByte, 0x22, code, 0x44, {}),
             "target address=11, direction=read, mode=HDR-DDR, option=00, type=with defining byte, "
             "length=22, code=33, defining byte=44, data=");
        sent(sdk.i3cCccTransfer(id, 0x11, I3cTransferDirection_Write, I3cTransferMode_LegacyI2c,
                                false, I3cCccType_WithoutDefiningByte, 0x22, code, 0x44, data),
             "target address=11, direction=write, mode=legacy I2C, option=00, "
             "type=without defining byte, length=22, code=33, defining byte=00, data=D1D2");
    }

    ScriptedHid hid;
    VeltraAsyncSDK sdk;
    size_t requests = 0;
    Bytes data{0xD1, 0xD2};
};

void printResponses() {
    // Long enough for every count that the offsets make.
    constexpr size_t frameSize = 3000;
    ScriptedHid hid;
    attach(hid, highSpeed);
    hid.respond([](const Bytes& report) {
        Bytes frame = counting(frameSize);
        std::copy_n(report.begin() + 3, 4, frame.begin());
        return highSpeed.inputs(frame);
    });
    VeltraSDK sdk(generousLimitMs);
    require(sdk.connect(""), "the scripted adapter is not found");
    const auto received = [&](uint16_t result, Fields fields) {
        const Bytes report = hid.writes().back();
        if (result != ResultCode_Success) {
            fields.emplace_back("status", twoBytes(result));
        }
        print("response", hexadecimal({report[5], report[6]}), text(fields));
    };

    Bytes data;
    uint16_t result = sdk.getUsbString(data, 1);
    received(result, {{"length", oneByte(data.size() + 1)}, {"string", beginOf(data.data())}});

    result = sdk.i2cRead(0, 0x50, {}, 16, data, false);
    received(result, {{"data", beginOf(data.data())}});

    uint8_t sevenBit = 0;
    uint8_t tenBit = 0;
    result = sdk.i2cScanBus(data, &sevenBit, &tenBit, 0, true);
    received(result, {{"number of 7-bit addresses", {sevenBit}},
                      {"number of 10-bit addresses", {tenBit}},
                      {"list", beginOf(data.data())}});

    Bytes spiData{0x01};
    result = sdk.spiTransfer(spiData, data, 1);
    received(result, {{"number of bytes received", twoBytes(data.size())},
                      {"bytes", beginOf(data.data())}});

    GpioLogicLevel level{};
    result = sdk.gpioDigitalRead(GpioPinNumber_0, level);
    received(result, {{"level", {level}}});

    std::vector<I3cTargetInfo> table;
    result = sdk.i3cGetDeviceTable(table);
    const I3cTargetInfo& record = table.front();
    received(result, {{"number of records", oneByte(table.size())},
                      {"static address", {record.staticAddress}},
                      {"dynamic address", {record.dynamicAddress}},
                      {"PID", Bytes(record.pid, record.pid + sizeof(record.pid))},
                      {"BCR", {record.bcr}},
                      {"DCR", {record.dcr}},
                      {"maximum write length", twoBytes(record.maxWriteLength)},
                      {"maximum read length", twoBytes(record.maxReadLength)},
                      {"maximum IBI payload", {record.maxIbiPayloadSize}},
                      {"configuration", {record.configuration}}});

    const auto receivedTransfer = [&](uint16_t status) {
        received(status,
                 {{"number of bytes", twoBytes(data.size())}, {"data", beginOf(data.data())}});
    };
    receivedTransfer(sdk.i3cSdrRead(0x11, {}, 1, data, I3cTransferFlags_None));
    receivedTransfer(sdk.i3cHdrDdrRead(0x11, 0x80, 1, data));
    receivedTransfer(sdk.i3cLegacyI2cRead(0x11, {}, 1, data, I3cTransferFlags_None));

    result = sdk.i3cCccGETPID(0x11, data);
    received(result, {{"number of bytes", oneByte(data.size())}, {"data", beginOf(data.data())}});
}

Fields decoded(const Notification& notification) {
    if (const UartRxData* const view = notification.uartRx()) {
        return {{"number of bytes", twoBytes(view->length)}, {"bytes", beginOf(view->data)}};
    }
    if (const GpioData* const view = notification.gpio()) {
        return {{"event byte", {view->value}}};
    }
    if (const I3cIbiData* const view = notification.i3cIbi()) {
        return {{"address", {view->address}},
                {"payload length", oneByte(view->payloadLength)},
                {"payload", beginOf(view->payload)}};
    }
    if (const I3cHotJoinData* const view = notification.i3cHotJoin()) {
        return {{"PID", Bytes(view->pid, view->pid + sizeof(view->pid))},
                {"BCR", {view->bcrDcr[0]}},
                {"DCR", {view->bcrDcr[1]}},
                {"dynamic address", {view->dynamicAddress}}};
    }
    return {};
}

void printNotifications() {
    ScriptedHid hid;
    VeltraSDK sdk(0);
    for (const Bytes& code :
         {Bytes{0x81, 0x10}, Bytes{0x81, 0x14}, Bytes{0x81, 0x19}, Bytes{0x82, 0x19}}) {
        // Longer than any kind needs, and with room behind the shortest for what decoding looks at.
        Bytes frame = counting(32);
        std::fill_n(frame.begin(), 2, uint8_t{0});
        std::copy(code.begin(), code.end(), frame.begin() + 2);
        size_t shortest = frame.size();
        Fields fields;
        sdk.onNotification([&](const Notification& notification) {
            fields = decoded(notification);
            Notification shortened = notification;
            while (shortened.size > 0 && !decoded(shortened).empty()) {
                shortest = shortened.size--;
            }
        });
        sdk.handleResponse(frame);
        print("notification", hexadecimal(code),
              text(fields) + ", shortest frame=" + std::to_string(shortest));
    }
}

void printExchange() {
    ScriptedHid hid;
    attach(hid, fullSpeed);
    const Bytes response = fullSpeed.input({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01});
    hid.respond([&](const Bytes&) { return std::vector<Bytes>{response}; });
    VeltraSDK sdk(generousLimitMs);
    GpioLogicLevel level = GpioLogicLevel_Low;
    require(sdk.connect("") && sdk.gpioDigitalRead(GpioPinNumber_5, level) == ResultCode_Success &&
                level == GpioLogicLevel_High,
            "the response of the exchange does not tell a high level");
    const Bytes request = hid.writes().front();
    print("request report", hexadecimal(Bytes(request.begin() + 1, request.end())));
    print("response report", hexadecimal(response));
}

void printLimits() {
    const auto payloadOf = [](const Variant& variant) {
        return std::to_string(UsbTransferProtocol(variant.reportSize).getPacketPayloadLength());
    };
    print("shortest frame", std::to_string(ResponseFrame::minSize));
    print("longest message", std::to_string(UsbTransferProtocol::maxMessageSize));
    print("payload of a full-speed packet", payloadOf(fullSpeed));
    print("payload of a high-speed packet", payloadOf(highSpeed));
}

} // namespace

int main() {
    Requests().printAll();
    printResponses();
    printNotifications();
    printExchange();
    printLimits();
    return testing::UnitTest::GetInstance()->Failed() ? EXIT_FAILURE : EXIT_SUCCESS;
}
