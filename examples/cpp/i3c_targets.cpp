// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Brings the I3C bus up, prints its targets, reads and writes one of them, and waits for what
// targets send of their own accord: an in-band interrupt and a hot-join.
//
// The bus, its table and its events are the same on every board; the registers are those of the
// virtual adapter's targets.
#include "example.hpp"
#include "inbox.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <string>

namespace {

using Bytes = std::vector<uint8_t>;

// Events of ENEC and DISEC.
constexpr uint8_t eventInterrupt = 0x01;
constexpr uint8_t eventHotJoin = 0x08;

// Device characteristics registers that the example looks for.
constexpr uint8_t temperatureSensor = 0x63;
constexpr uint8_t microcontroller = 0xC6;

// The registers of the virtual adapter's temperature sensor and microcontroller.
constexpr uint8_t registerTemperature = 0x00;
constexpr uint8_t registerAlert = 0x02;
constexpr uint8_t registerScratch = 0x04;
constexpr uint8_t registerModuleSupply = 0x00;

std::string kindOf(uint8_t dcr) {
    static const std::map<uint8_t, std::string> kinds{{0x00, "generic device"},
                                                      {0x41, "accelerometer"},
                                                      {temperatureSensor, "temperature sensor"},
                                                      {microcontroller, "microcontroller"}};
    const auto kind = kinds.find(dcr);
    return kind == kinds.end() ? "device of another kind" : kind->second;
}

/// A number as hexadecimal digits, two to a byte.
std::string hex(uint64_t number, size_t digits) {
    std::string text(digits, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number /= 16) {
        *digit = "0123456789ABCDEF"[number % 16];
    }
    return text;
}

template <typename PidBytes>
void printTarget(uint8_t address, const PidBytes& pidBytes, uint8_t bcr, uint8_t dcr) {
    static constexpr std::array abilities{"limited speed",     "in-band interrupts",
                                          "interrupt payload", "can be offline",
                                          "virtual targets",   "advanced capabilities"};
    uint64_t pid = 0;
    for (const uint8_t byte : pidBytes) {
        pid = pid << 8 | byte;
    }
    std::cout << "  0x" << hex(address, 2) << ": " << kindOf(dcr) << " (DCR 0x" << hex(dcr, 2)
              << ")\n"
              << "    PID " << hex(pid, 12) << ": manufacturer 0x" << hex(pid >> 33, 4)
              << ", part 0x" << hex(pid >> 16, 4) << ", instance " << (pid >> 12 & 0xF) << '\n'
              << "    BCR 0x" << hex(bcr, 2) << ": "
              << (bcr >> 6 == 1 ? "could be the controller" : "target");
    unsigned bit = 0;
    for (const char* ability : abilities) {
        if ((bcr >> bit++ & 1) != 0) {
            std::cout << ", " << ability;
        }
    }
    std::cout << '\n';
}

bool bringBusUp(VeltraSDK& sdk) {
    return succeeded("Setting the bus voltage", sdk.i3cSetBusVoltage(1800)) &&
           succeeded("Initialising the controller",
                     sdk.i3cControllerInit(I3cPushPullRate_8_MHz, I3cOpenDrainTransferRate_1_MHz,
                                           I2cTransferRate_0_4_MHz, I3cDriveStrength_8_mA)) &&
           // Without records of its own the controller assigns addresses to all it finds.
           succeeded("Initialising the bus", sdk.i3cInitBus({}));
}

/// The address of the first target of the kind, or nothing.
std::optional<uint8_t> find(const std::vector<I3cTargetInfo>& table, uint8_t dcr) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [=](const I3cTargetInfo& target) { return target.dcr == dcr; });
    if (found == table.end()) {
        std::cerr << "There is no " << kindOf(dcr) << " on the bus.\n";
        return std::nullopt;
    }
    return found->dynamicAddress;
}

bool readRegisters(VeltraSDK& sdk, uint8_t address, uint8_t first, uint16_t length, Bytes& values) {
    return succeeded("Reading registers",
                     sdk.i3cSdrRead(address, {first}, length, values, I3cTransferFlags_None)) &&
           values.size() == length;
}

bool writeRegister(VeltraSDK& sdk, uint8_t address, uint8_t index, uint8_t value) {
    return succeeded("Writing a register",
                     sdk.i3cSdrWrite(address, {index}, {value}, I3cTransferFlags_None));
}

bool useSensor(VeltraSDK& sdk, uint8_t address) {
    Bytes temperature;
    Bytes scratch;
    if (!readRegisters(sdk, address, registerTemperature, 2, temperature) ||
        !writeRegister(sdk, address, registerScratch, 0x5A) ||
        !readRegisters(sdk, address, registerScratch, 1, scratch)) {
        return false;
    }
    const auto reading = static_cast<int16_t>(temperature[0] << 8 | temperature[1]);
    std::cout << "Temperature: " << std::fixed << std::setprecision(1) << reading / 256.0
              << " degrees Celsius\n"
              << "Scratch register: wrote 0x5A, read 0x" << hex(scratch[0], 2) << '\n';
    return true;
}

bool receiveInterrupt(VeltraSDK& sdk, Inbox& inbox, uint8_t address) {
    if (!succeeded("Enabling interrupts", sdk.i3cCccENECDirect(address, eventInterrupt)) ||
        !writeRegister(sdk, address, registerAlert, 0x21)) {
        return false;
    }
    const auto item = inbox.take(NotificationKind_I3cIbi);
    const auto notification = item ? item->notification() : Notification{};
    const I3cIbiData* const interrupt = notification.i3cIbi();
    if (interrupt == nullptr) {
        std::cerr << "No in-band interrupt came.\n";
        return false;
    }
    std::cout << "In-band interrupt from 0x" << hex(interrupt->address, 2) << ':';
    const size_t length = std::min(interrupt->payloadLength, notification.size - 8);
    for (size_t i = 0; i < length; ++i) {
        std::cout << ' ' << hex(interrupt->payload[i], 2);
    }
    std::cout << '\n';
    return true;
}

bool receiveHotJoin(VeltraSDK& sdk, Inbox& inbox, uint8_t supplyAddress) {
    // The broadcast admits hot-joins; the microcontroller switches a module's supply on.
    if (!succeeded("Enabling hot-joins", sdk.i3cCccENECBroadcast(eventHotJoin)) ||
        !writeRegister(sdk, supplyAddress, registerModuleSupply, 1)) {
        return false;
    }
    const auto item = inbox.take(NotificationKind_I3cHotJoin);
    const auto notification = item ? item->notification() : Notification{};
    const I3cHotJoinData* const joined = notification.i3cHotJoin();
    if (joined == nullptr) {
        std::cerr << "No target joined.\n";
        return false;
    }
    std::cout << "Joined the bus:\n";
    printTarget(joined->dynamicAddress, joined->pid, joined->bcrDcr[0], joined->bcrDcr[1]);
    return true;
}

bool tour(VeltraSDK& sdk, Inbox& inbox) {
    std::vector<I3cTargetInfo> table;
    if (!bringBusUp(sdk) || !succeeded("Reading the device table", sdk.i3cGetDeviceTable(table))) {
        return false;
    }
    std::cout << "Targets on the bus:\n";
    for (const I3cTargetInfo& target : table) {
        printTarget(target.dynamicAddress, target.pid, target.bcr, target.dcr);
    }
    const auto sensor = find(table, temperatureSensor);
    const auto supply = find(table, microcontroller);
    return sensor && supply && useSensor(sdk, *sensor) && receiveInterrupt(sdk, inbox, *sensor) &&
           receiveHotJoin(sdk, inbox, *supply);
}

} // namespace

int main() {
    Inbox inbox;
    VeltraSDK sdk(1000);
    // Before connecting.
    sdk.onNotification([&inbox](const Notification& notification) { inbox.put(notification); });
    return connectOrExplain(sdk) && tour(sdk, inbox) ? 0 : 1;
}
