// Prints what the library sends and how it reads what it receives, field by field, under the names
// of docs/protocol.md: check_protocol.py compares the two. Every argument has a value of its own,
// and every byte received the value of its offset, so that no field can be taken for another.

#include "driver/UsbTransferProtocol.hpp"
#include "protocol/ResponseFrame.hpp"
#include "support/Model.hpp"

#include <veltrasdk/VeltraAsyncSDK.hpp>
#include <veltrasdk/VeltraSDK.hpp>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>

using namespace test_support;

namespace {

/// A field's bytes, or the word that the page has for its value.
struct Field {
    std::string name;
    Bytes bytes;
    std::string word = {};
};

using Fields = std::vector<Field>;

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

void print(const std::string& kind, const Bytes& bytes, const Fields& fields = {}) {
    std::cout << kind << "\t" << hexadecimal(bytes);
    for (const Field& field : fields) {
        std::cout << "\t" << field.name << "=";
        std::cout << (field.word.empty() ? hexadecimal(field.bytes) : field.word);
    }
    std::cout << "\n";
}

void print(const std::string& name, size_t number) {
    std::cout << name << "\t" << number << "\n";
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

void attach(ScriptedHid& hid, const Model& model) {
    hid.attach({"1-1:1.0", vendorId, model.productId, L"VA-0001"});
}

void printRequests() {
    constexpr uint16_t id = 0x0201;
    ScriptedHid hid;
    attach(hid, highSpeed);
    VeltraAsyncSDK sdk;
    require(sdk.connect(""), "the scripted adapter is not found");
    size_t requests = 0;
    const auto sent = [&](uint16_t result, const Fields& fields) {
        const std::vector<Bytes> reports = hid.writes();
        require(result == ResultCode_Success && reports.size() == ++requests,
                "a request is not one report");
        const Bytes& report = reports.back();
        const auto frame = report.begin() + 3;
        print("request", Bytes(frame, frame + (report[1] | report[2] << 8) / 4), fields);
    };

    sent(sdk.getUsbString(id, 0x11), {{"index", {0x11}}});
    sent(sdk.i3cSetBusVoltage(id, 0x2211), {{"mV", {0x11, 0x22}}});
    const Fields voltage{{"mV", {0x11, 0x22}}, {"flag", {0x01}}};
    sent(sdk.setI2cSpiUartGpioVoltage(id, 0x2211, true), voltage);
    sent(sdk.i2cSetBusVoltage(id, 0x2211, true), voltage);
    sent(sdk.spiSetBusVoltage(id, 0x2211, true), voltage);
    sent(sdk.uartSetBusVoltage(id, 0x2211, true), voltage);
    sent(sdk.gpioSetVoltage(id, 0x2211, true), voltage);

    sent(sdk.i2cSetPullUpResistors(id, 0x11, 0x22), {{"bus index", {0x11}}, {"setting", {0x22}}});
    const Fields i2c{
        {"bus index", {0x11}}, {"clock in Hz", {0x21, 0x22, 0x23, 0x24}}, {"option", {0x33}}};
    sent(sdk.i2cControllerInit(id, 0x11, 0x24232221, 0x33), i2c);
    sent(sdk.i2cSetParameters(id, 0x11, 0x24232221, 0x33), i2c);
    sent(sdk.i2cWrite(id, 0x11, 0x22, {0x12, 0x34}, {0xD1, 0xD2, 0xD3}, true),
         {{"bus index", {0x11}},
          {"data length", {0x03, 0x00}},
          {"target address", {0x22}},
          {"register-address length", {0x02}},
          {"register address", {0x34, 0x12, 0x00, 0x00}},
          {"flag", {0x01}},
          {"data", {0xD1, 0xD2, 0xD3}}});
    sent(sdk.i2cRead(id, 0x11, 0x22, {0x12, 0x34}, 0x5544, true),
         {{"bus index", {0x11}},
          {"length to read", {0x44, 0x55}},
          {"target address", {0x22}},
          {"register-address length", {0x02}},
          {"register address", {0x34, 0x12, 0x00, 0x00}},
          {"flag", {0x01}}});
    sent(sdk.i2cScanBus(id, 0x11, true), {{"bus index", {0x11}}, {"flag", {0x01}}});

    const auto bitOrder = static_cast<SpiBitOrder>(0x11);
    const auto spiMode = static_cast<SpiMode>(0x22);
    const auto dataWidth = static_cast<SpiDataWidth>(0x33);
    const auto chipSelect = static_cast<SpiChipSelect>(0x44);
    const auto polarity = static_cast<SpiChipSelectPolarity>(0x55);
    const Fields spi{{"bit order", {0x11}},  {"mode", {0x22}},
                     {"data width", {0x33}}, {"chip select", {0x44}},
                     {"polarity", {0x55}},   {"clock in Hz", {0x61, 0x62, 0x63, 0x64}}};
    sent(sdk.spiControllerInit(id, bitOrder, spiMode, dataWidth, chipSelect, polarity, 0x64636261),
         spi);
    sent(sdk.spiSetParameters(id, bitOrder, spiMode, dataWidth, chipSelect, polarity, 0x64636261),
         spi);
    Bytes spiData{0xD1, 0xD2, 0xD3};
    sent(sdk.spiTransfer(id, spiData, 0x5544), {{"number of bytes to send", {0x03, 0x00}},
                                                {"requested length", {0x44, 0x55}},
                                                {"bytes", {0xD1, 0xD2, 0xD3}}});

    const auto baudRate = static_cast<UartBaudRate>(0x11);
    const auto handshake = static_cast<UartHwHandshake>(0x22);
    const auto parity = static_cast<UartParity>(0x33);
    const auto dataSize = static_cast<UartDataSize>(0x44);
    const auto stopBit = static_cast<UartStopBit>(0x55);
    const Fields uart{{"baud rate", {0x11}},
                      {"handshake", {0x22}},
                      {"parity", {0x33}},
                      {"data size", {0x44}},
                      {"stop bits", {0x55}}};
    sent(sdk.uartInit(id, baudRate, handshake, parity, dataSize, stopBit), uart);
    sent(sdk.uartSetParameters(id, baudRate, handshake, parity, dataSize, stopBit), uart);
    sent(sdk.uartSendMessage(id, {0xD1, 0xD2, 0xD3}),
         {{"number of bytes", {0x03, 0x00}}, {"bytes", {0xD1, 0xD2, 0xD3}}});

    const auto pin = static_cast<GpioPinNumber>(0x11);
    const auto level = static_cast<GpioLogicLevel>(0x22);
    sent(sdk.gpioConfigurePin(id, pin, GpioFunctionality_Output, level),
         {{"pin", {0x11}}, {"functionality", {0x01}}, {"level", {0x22}}});
    sent(sdk.gpioConfigurePin(id, pin, GpioFunctionality_OpenDrainOutput, level),
         {{"pin", {0x11}}, {"functionality", {0x04}}});
    sent(sdk.gpioDigitalWrite(id, pin, level), {{"pin", {0x11}}, {"level", {0x22}}});
    sent(sdk.gpioDigitalRead(id, pin), {{"pin", {0x11}}});
    sent(sdk.gpioConfigureInterrupt(id, pin, static_cast<GpioTriggerType>(0x22)),
         {{"pin", {0x11}}, {"trigger", {0x22}}});
    sent(sdk.gpioDisableInterrupt(id, pin), {{"pin", {0x11}}});

    const Fields i3c{{"push-pull rate", {0x11}},
                     {"open-drain rate", {0x22}},
                     {"I2C rate", {0x33}},
                     {"drive strength", {0x44}}};
    sent(sdk.i3cControllerInit(id, 0x11, 0x22, 0x33, 0x44), i3c);
    sent(sdk.i3cSetParameters(id, 0x11, 0x22, 0x33, 0x44), i3c);
    sent(sdk.i3cInitBus(id,
                        {{0x11, 0x22, {1, 2, 3, 4, 5, 6}, 0x33, 0x44, 0x5655, 0x6665, 0x77, 0x88}}),
         {{"number of records", {0x01}},
          {"static address", {0x11}},
          {"dynamic address", {0x22}},
          {"PID", {1, 2, 3, 4, 5, 6}},
          {"BCR", {0x33}},
          {"DCR", {0x44}},
          {"maximum write length", {0x55, 0x56}},
          {"maximum read length", {0x65, 0x66}},
          {"maximum IBI payload", {0x77}},
          {"configuration", {0x88}}});
    sent(sdk.i3cResetBus(id), {});
    sent(sdk.i3cGetDeviceTable(id), {});
    sent(sdk.i3cSetTargetDeviceConfiguration(id, 0x11, static_cast<I3cTargetConfiguration>(0x22)),
         {{"address", {0x11}}, {"configuration", {0x22}}});

    const Bytes subAddress{0x51, 0x52, 0x53};
    const Bytes data{0xD1, 0xD2};
    const auto flags = static_cast<I3cTransferFlags>(0x15);
    const auto transfer = [&](const std::string& direction, const std::string& mode,
                              uint8_t hdrCommand, const Bytes& length, const Bytes& written) {
        const bool hdr = hdrCommand != 0;
        return Fields{{"target address", {0x11}},
                      {"direction", {}, direction},
                      {"mode", {}, mode},
                      {"flags", oneByte(hdr ? 0x00 : 0x15)},
                      {"HDR command code", {hdrCommand}},
                      {"sub-address length", oneByte(hdr ? 0 : 3)},
                      {"sub-address", hdr ? Bytes(4) : Bytes{0x51, 0x52, 0x53, 0x00}},
                      {"number of bytes", length},
                      {"data", written}};
    };
    const Fields sdrWrite = transfer("write", "SDR", 0, {0x02, 0x00}, data);
    const Fields hdrDdrWrite = transfer("write", "HDR-DDR", 0x22, {0x02, 0x00}, data);
    const Fields legacyI2cWrite = transfer("write", "legacy I2C", 0, {0x02, 0x00}, data);
    sent(sdk.i3cSdrWrite(id, 0x11, subAddress, data, flags), sdrWrite);
    sent(sdk.i3cHdrDdrWrite(id, 0x11, 0x22, data), hdrDdrWrite);
    sent(sdk.i3cLegacyI2cWrite(id, 0x11, subAddress, data, flags), legacyI2cWrite);
    const Fields sdrRead = transfer("read", "SDR", 0, {0x44, 0x55}, {});
    const Fields hdrDdrRead = transfer("read", "HDR-DDR", 0x22, {0x44, 0x55}, {});
    const Fields legacyI2cRead = transfer("read", "legacy I2C", 0, {0x44, 0x55}, {});
    sent(sdk.i3cSdrRead(id, 0x11, subAddress, 0x5544, flags), sdrRead);
    sent(sdk.i3cHdrDdrRead(id, 0x11, 0x22, 0x5544), hdrDdrRead);
    sent(sdk.i3cLegacyI2cRead(id, 0x11, subAddress, 0x5544, flags), legacyI2cRead);
    sent(sdk.i3cTargetResetPattern(id), {{"pattern", {}, "target reset"}});
    sent(sdk.i3cHdrExitPattern(id), {{"pattern", {}, "HDR exit"}});

    const auto ccc = [](const std::string& direction, const std::string& mode, uint8_t option,
                        const std::string& type, uint8_t definingByte, const Bytes& written) {
        return Fields{{"target address", {0x11}}, {"direction", {}, direction},
                      {"mode", {}, mode},         {"option", {option}},
                      {"type", {}, type},         {"length", {0x22}},
                      {"code", {0x33}},           {"defining byte", {definingByte}},
                      {"data", written}};
    };
    const Fields sdrCcc = ccc("write", "SDR", 1, "with defining byte", 0x44, data);
    const Fields hdrDdrCcc = ccc("read", "HDR-DDR", 0, "with defining byte", 0x44, {});
    const Fields legacyI2cCcc = ccc("write", "legacy I2C", 0, "without defining byte", 0, data);
    const auto code = static_cast<CCC>(0x33);
    sent(sdk.i3cCccTransfer(id, 0x11, I3cTransferDirection_Write, I3cTransferMode_Sdr, true,
                            I3cCccType_WithDefiningByte, 0x22, code, 0x44, data),
         sdrCcc);
    sent(sdk.i3cCccTransfer(id, 0x11, I3cTransferDirection_Read, I3cTransferMode_HdrDdr, false,
                            I3cCccType_WithDefiningByte, 0x22, code, 0x44, {}),
         hdrDdrCcc);
    sent(sdk.i3cCccTransfer(id, 0x11, I3cTransferDirection_Write, I3cTransferMode_LegacyI2c, false,
                            I3cCccType_WithoutDefiningByte, 0x22, code, 0x44, data),
         legacyI2cCcc);

    sent(sdk.enterBootMode(id), {});
}

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
            fields.push_back({"status", twoBytes(result)});
        }
        print("response", {report[5], report[6]}, fields);
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
        fields.push_back({"shortest frame", {}, std::to_string(shortest)});
        print("notification", code, fields);
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
    print("request report", Bytes(request.begin() + 1, request.end()));
    print("response report", response);
}

void printLimits() {
    print("shortest frame", ResponseFrame::shortestFrame);
    print("longest message", UsbTransferProtocol::longestMessage);
    print("payload of a full-speed packet",
          UsbTransferProtocol(fullSpeed.reportSize).getPacketPayloadLength());
    print("payload of a high-speed packet",
          UsbTransferProtocol(highSpeed.reportSize).getPacketPayloadLength());
}

} // namespace

int main() {
    printRequests();
    printResponses();
    printNotifications();
    printExchange();
    printLimits();
    return testing::UnitTest::GetInstance()->Failed() ? EXIT_FAILURE : EXIT_SUCCESS;
}
