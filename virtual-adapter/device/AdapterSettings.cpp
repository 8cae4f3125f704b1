// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/AdapterSettings.hpp"

#include "device/Utf16.hpp"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <vector>

namespace virtual_adapter {

namespace {

constexpr unsigned maxFaultDelay = 3'600'000;
constexpr unsigned maxLatency = 1'000'000;
constexpr const char* noFault = "none";

// A USB string descriptor has room for 126 UTF-16 units, the adapter's own identity strings for
// 254 bytes.
constexpr size_t maxUsbString = 126;
constexpr size_t maxIdentityString = 254;

std::string allowedModels() {
    std::string names;
    for (const UsbIdentity& identity : usbIdentities) {
        names += (names.empty() ? "" : ", ") + std::string(identity.variant.name);
    }
    return names;
}

void readModel(AdapterSettings& settings, const std::string& text) {
    const UsbIdentity* const identity = findUsbIdentity(text);
    if (identity == nullptr) {
        throw std::invalid_argument("expected one of " + allowedModels());
    }
    settings.identity = *identity;
}

std::string writeModel(const AdapterSettings& settings) {
    return settings.identity.variant.name;
}

/// Whether it is text that USB and the adapter's own identity strings have room for.
bool isSerialNumber(const std::string& text) {
    size_t units = 0;
    for (const char32_t character : charactersOfUtf8(text)) {
        units += utf16UnitsOf(character).size();
    }
    return isUtf8(text) && units >= 1 && units <= maxUsbString && text.size() <= maxIdentityString;
}

void readSerialNumber(AdapterSettings& settings, const std::string& text) {
    if (!isSerialNumber(text)) {
        throw std::invalid_argument("expected UTF-8 text of 1 to 126 UTF-16 units and at most 254 "
                                    "bytes");
    }
    settings.serialNumber = text;
}

std::string writeSerialNumber(const AdapterSettings& settings) {
    return settings.serialNumber;
}

void readFault(AdapterSettings& settings, const std::string& text) {
    if (text == noFault) {
        settings.faults.clear();
        return;
    }
    settings.faults.push_back(parseFault(text));
}

std::string writeFault(const AdapterSettings& settings) {
    std::string faults;
    for (const Fault& fault : settings.faults) {
        faults += (faults.empty() ? "" : " ") + textOf(fault);
    }
    return faults.empty() ? noFault : faults;
}

unsigned readNumber(const std::string& text, unsigned max, const char* unit) {
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number > max) {
        throw std::invalid_argument(std::string("expected ") + unit + " from 0 to " +
                                    std::to_string(max));
    }
    return number;
}

void readFaultDelay(AdapterSettings& settings, const std::string& text) {
    settings.faultDelay =
        std::chrono::milliseconds(readNumber(text, maxFaultDelay, "milliseconds"));
}

std::string writeFaultDelay(const AdapterSettings& settings) {
    return std::to_string(settings.faultDelay.count());
}

void readLatency(AdapterSettings& settings, const std::string& text) {
    settings.latency = std::chrono::microseconds(readNumber(text, maxLatency, "microseconds"));
}

std::string writeLatency(const AdapterSettings& settings) {
    return std::to_string(settings.latency.count());
}

} // namespace

bool AdapterSettings::hasFault(FaultKind kind) const {
    return std::any_of(faults.begin(), faults.end(),
                       [=](const Fault& fault) { return fault.kind == kind; });
}

std::string faultHelp(FaultsOf whom) {
    return "What goes wrong, and where: @N is the Nth request, @COMMAND the next of that command, "
           "@COMMAND:N the Nth of that command; the third request unless told. Give it again for "
           "another. NAME is one of " +
           faultNameList(whom);
}

const std::array<SettingText, 5>& settingTexts() {
    static const std::array<SettingText, 5> texts{{
        {"--model", "NAME", "The adapter's model: " + allowedModels(), false, readModel,
         writeModel},
        {"--serial", "TEXT", "The adapter's serial number", false, readSerialNumber,
         writeSerialNumber},
        {"--fault", "NAME[@PLACE]", faultHelp(FaultsOf::AdapterAndHost), true, readFault,
         writeFault},
        {"--fault-delay", "MS", "How late the late response comes, in milliseconds", false,
         readFaultDelay, writeFaultDelay},
        {"--latency", "US",
         "How long a report takes, in microseconds; 1000 at full speed and 125 at high speed are "
         "those of real adapters",
         false, readLatency, writeLatency},
    }};
    return texts;
}

} // namespace virtual_adapter
