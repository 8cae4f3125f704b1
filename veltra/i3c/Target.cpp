// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "i3c/Target.hpp"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace veltra {

namespace {

constexpr uint8_t bcrRole = 0xC0;
constexpr uint8_t bcrControllerCapable = 0x40;

const Named<uint8_t> bcrBits[] = {
    {"limited-speed", 0x01},  {"ibi", 0x02},
    {"ibi-payload", 0x04},    {"offline-capable", 0x08},
    {"virtual-target", 0x10}, {"advanced-capabilities", 0x20},
};

const Named<uint8_t> dcrNames[] = {
    {"generic device", 0x00}, {"accelerometer", 0x41},      {"gyroscope", 0x42},
    {"magnetometer", 0x43},   {"temperature sensor", 0x63}, {"microcontroller", 0xC6},
};

Json orNull(uint8_t address) {
    return address == 0 ? Json(nullptr) : Json(address);
}

std::string orDash(uint8_t address) {
    return address == 0 ? "-" : hexNumber(address, 2);
}

std::string padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text + "  ";
}

std::string lineOf(const I3cTargetInfo& target) {
    if (isLegacy(target)) {
        return padded("-", 7) + padded(orDash(target.staticAddress), 6) + "legacy I2C device";
    }
    return padded(orDash(target.dynamicAddress), 7) + padded(orDash(target.staticAddress), 6) +
           padded(pidOf(target), 12) + padded(std::to_string(target.maxWriteLength), 4) +
           padded(std::to_string(target.maxReadLength), 4) +
           padded(std::to_string(target.maxIbiPayloadSize), 3) +
           padded(hexNumber(target.dcr, 2) + " " + wordsOfDcr(target.dcr), 23) +
           hexNumber(target.bcr, 2) + " " + join(wordsOfBcr(target.bcr), ", ");
}

void setMember(I3cTargetInfo& target, const Assignment& member) {
    const std::string& value = member.value;
    if (member.name == "static") {
        target.staticAddress = parseAddress(value);
    } else if (member.name == "dynamic") {
        target.dynamicAddress = parseAddress(value);
    } else if (member.name == "pid") {
        const Bytes pid = parsePid(value);
        std::copy(pid.begin(), pid.end(), target.pid);
    } else if (member.name == "mwl") {
        target.maxWriteLength = static_cast<uint16_t>(parseNumber("mwl", value, 0, 0xFFFF));
    } else if (member.name == "mrl") {
        target.maxReadLength = static_cast<uint16_t>(parseNumber("mrl", value, 0, 0xFFFF));
    } else if (member.name == "ibi-max") {
        target.maxIbiPayloadSize = static_cast<uint8_t>(parseNumber("ibi-max", value, 0, 0xFF));
    } else if (member.name == "ibi") {
        const Named<I3cTargetConfiguration> choices[] = {
            {"accept", I3cTargetConfiguration_AcceptIbi},
            {"reject", I3cTargetConfiguration_RejectIbi}};
        target.configuration = parseName("ibi", value, choices);
    } else {
        refuseName("member", member.name,
                   {"static", "dynamic", "pid", "mwl", "mrl", "ibi-max", "ibi", "legacy"});
    }
}

} // namespace

bool isLegacy(const I3cTargetInfo& target) {
    return target.configuration == I3cTargetConfiguration_LegacyI2c;
}

std::string pidOf(const I3cTargetInfo& target) {
    return hexDigits({std::begin(target.pid), std::end(target.pid)});
}

std::vector<std::string> wordsOfBcr(uint8_t bcr) {
    std::vector<std::string> words;
    for (const Named<uint8_t>& bit : bcrBits) {
        if ((bcr & bit.value) != 0) {
            words.emplace_back(bit.name);
        }
    }
    if ((bcr & bcrRole) == bcrControllerCapable) {
        words.emplace_back("controller-capable");
    }
    return words;
}

std::string wordsOfDcr(uint8_t dcr) {
    for (const Named<uint8_t>& known : dcrNames) {
        if (known.value == dcr) {
            return known.name;
        }
    }
    return "";
}

Json jsonOf(const I3cTargetInfo& target) {
    if (isLegacy(target)) {
        return {{"op", "i3c.legacy"}, {"static", target.staticAddress}};
    }
    const std::string kind = wordsOfDcr(target.dcr);
    return {{"op", "i3c.target"},
            {"dynamic", orNull(target.dynamicAddress)},
            {"static", orNull(target.staticAddress)},
            {"pid", pidOf(target)},
            {"bcr", target.bcr},
            {"dcr", target.dcr},
            {"mwl", target.maxWriteLength},
            {"mrl", target.maxReadLength},
            {"ibi_max", target.maxIbiPayloadSize},
            {"bcr_text", wordsOfBcr(target.bcr)},
            {"dcr_text", kind.empty() ? Json(nullptr) : Json(kind)}};
}

std::string tableOf(const std::vector<I3cTargetInfo>& targets) {
    std::string table =
        "dynamic  static  pid           mwl   mrl   ibi  dcr                      bcr";
    for (const I3cTargetInfo& target : targets) {
        const std::string line = lineOf(target);
        table += "\n" + line.substr(0, line.find_last_not_of(' ') + 1);
    }
    return table;
}

Bytes parsePid(const std::string& text) {
    Bytes pid = parseHex(text);
    if (pid.size() != sizeof I3cTargetInfo::pid) {
        throw Failure::ofUsage("pid '" + text + "' has not 12 hexadecimal digits");
    }
    return pid;
}

I3cTargetInfo parseTarget(const std::string& text) {
    I3cTargetInfo target{};
    std::istringstream members(text);
    for (std::string member; std::getline(members, member, ',');) {
        if (member == "legacy") {
            target.configuration = I3cTargetConfiguration_LegacyI2c;
        } else {
            setMember(target, parseAssignment(member, "static=0x48,dynamic=0x09,..."));
        }
    }
    return target;
}

} // namespace veltra
