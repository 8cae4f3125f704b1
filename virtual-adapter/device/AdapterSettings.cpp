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

std::string allowedFaults() {
    std::string names;
    for (const FaultName& fault : faultNames()) {
        names += (names.empty() ? "" : ", ") + std::string(fault.name);
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
    const std::vector<FaultName>& names = faultNames();
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](const FaultName& fault) { return fault.name == text; });
    if (found == names.end()) {
        throw std::invalid_argument("expected one of " + allowedFaults());
    }
    settings.fault.kind = found->kind;
}

std::string writeFault(const AdapterSettings& settings) {
    const std::vector<FaultName>& names = faultNames();
    return std::find_if(names.begin(), names.end(),
                        [&](const FaultName& fault) { return fault.kind == settings.fault.kind; })
        ->name;
}

void readFaultDelay(AdapterSettings& settings, const std::string& text) {
    unsigned milliseconds = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, milliseconds);
    if (error != std::errc() || stop != end || milliseconds > maxFaultDelay) {
        throw std::invalid_argument("expected milliseconds from 0 to " +
                                    std::to_string(maxFaultDelay));
    }
    settings.fault.delay = std::chrono::milliseconds(milliseconds);
}

std::string writeFaultDelay(const AdapterSettings& settings) {
    return std::to_string(settings.fault.delay.count());
}

} // namespace

const std::array<SettingText, 4>& settingTexts() {
    static const std::array<SettingText, 4> texts{{
        {"--model", "NAME", "The adapter's model: " + allowedModels(), readModel, writeModel},
        {"--serial", "TEXT", "The adapter's serial number", readSerialNumber, writeSerialNumber},
        {"--fault", "NAME", "What goes wrong: " + allowedFaults(), readFault, writeFault},
        {"--fault-delay", "MS", "How late the late response comes, in milliseconds", readFaultDelay,
         writeFaultDelay},
    }};
    return texts;
}

} // namespace virtual_adapter
