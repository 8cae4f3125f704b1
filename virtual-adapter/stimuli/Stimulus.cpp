// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "stimuli/Stimulus.hpp"

#include "bytes/words.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace virtual_adapter {

namespace {

constexpr uint64_t maxI2cAddress = 0x7F;
constexpr uint64_t maxBus = 1;
constexpr uint64_t maxPin = 7;
constexpr uint64_t maxByte = 65'535;
constexpr uint64_t maxTimes = 1'000'000;
constexpr size_t pidSize = 6;
constexpr size_t maxInterruptPayload = 255;
constexpr size_t maxUartBytes = 65'535;

const char* const gpioForm = "gpio drive PIN 0|1|release";
const char* const i2cSetForm = "i2c BUS ADDR set NAME VALUE";
const char* const i2cNackForm = "i2c BUS ADDR nack address|data:N [TIMES]";
const char* const i3cInterruptForm = "i3c PID|ADDR interrupt [HEX]";
const char* const i3cPresenceForm = "i3c PID|ADDR join|leave";
const char* const uartForm = "uart receive BYTES";
const char* const faultForm = "fault NAME[@PLACE]";

[[noreturn]] void refuse(const std::string& why) {
    throw std::invalid_argument(why);
}

/// The words of a line, one after the other.
class Words {
public:
    explicit Words(std::string line) : left(std::move(line)) { skipSpaces(); }

    [[nodiscard]] bool atEnd() const { return left.empty(); }

    /// The next word; an empty one at the end.
    std::string next() {
        const size_t size = std::min(left.find(' '), left.size());
        std::string word = left.substr(0, size);
        left.erase(0, size);
        skipSpaces();
        return word;
    }

    /// Everything behind the words that have been taken.
    std::string rest() { return std::exchange(left, {}); }

    [[nodiscard]] bool beginsWith(const char* text) const { return left.rfind(text, 0) == 0; }

private:
    void skipSpaces() { left.erase(0, std::min(left.find_first_not_of(' '), left.size())); }

    std::string left;
};

uint64_t numberIn(const std::string& word, const char* what, uint64_t min, uint64_t max) {
    const std::optional<uint64_t> number = numberOf(word);
    if (!number || *number < min || *number > max) {
        refuse("'" + word + "' is no " + what + ": expected " + std::to_string(min) + " to " +
               std::to_string(max));
    }
    return *number;
}

void expectEnd(const Words& words, const char* form) {
    if (!words.atEnd()) {
        refuse(std::string("too many words: expected ") + form);
    }
}

[[noreturn]] void refuseForm(const std::string& forms) {
    refuse("expected " + forms);
}

Stimulus parseGpio(Words& words) {
    if (words.next() != "drive") {
        refuseForm(gpioForm);
    }
    const auto pin = static_cast<GpioPinNumber>(numberIn(words.next(), "pin", 0, maxPin));
    const std::string level = words.next();
    expectEnd(words, gpioForm);
    if (level == "release") {
        return GpioDrive{pin, std::nullopt};
    }
    if (level != "0" && level != "1") {
        refuse("'" + level + "' is no level: expected 0, 1 or release");
    }
    return GpioDrive{pin, level == "1" ? GpioLogicLevel_High : GpioLogicLevel_Low};
}

Stimulus parseI2cNack(Words& words, size_t bus, uint8_t address) {
    constexpr size_t prefixSize = 5;
    const std::string what = words.next();
    I2cNack nack{bus, address, std::nullopt, 1};
    if (what.rfind("data:", 0) == 0) {
        nack.byte = numberIn(what.substr(prefixSize), "byte", 1, maxByte);
    } else if (what != "address") {
        refuse("'" + what + "' is nothing to acknowledge: expected address or data:N");
    }
    if (!words.atEnd()) {
        nack.times = static_cast<unsigned>(numberIn(words.next(), "number of times", 1, maxTimes));
    }
    expectEnd(words, i2cNackForm);
    return nack;
}

Stimulus parseI2c(Words& words) {
    const size_t bus = numberIn(words.next(), "I2C bus", 0, maxBus);
    const auto address =
        static_cast<uint8_t>(numberIn(words.next(), "I2C address", 0, maxI2cAddress));
    const std::string verb = words.next();
    if (verb == "nack") {
        return parseI2cNack(words, bus, address);
    }
    const std::string name = verb == "set" ? words.next() : "";
    if (name.empty() || words.atEnd()) {
        refuseForm(std::string(i2cSetForm) + ", or " + i2cNackForm);
    }
    return I2cSet{bus, address, name, words.rest()};
}

I3cTargetName parseI3cTarget(const std::string& word) {
    I3cTargetName target;
    target.text = word;
    const std::optional<Bytes> pid = bytesOfHex(word);
    const std::optional<uint64_t> address = numberOf(word);
    if (pid && pid->size() == pidSize) {
        std::copy(pid->begin(), pid->end(), target.pid.emplace().begin());
    } else if (address && *address >= 1 && *address <= maxI2cAddress) {
        target.address = static_cast<uint8_t>(*address);
    } else {
        refuse("'" + word +
               "' is no target: expected a PID of 12 hexadecimal digits, or an "
               "address from 1 to 127");
    }
    return target;
}

Stimulus parseI3c(Words& words) {
    const I3cTargetName target = parseI3cTarget(words.next());
    const std::string verb = words.next();
    if (verb == "join" || verb == "leave") {
        expectEnd(words, i3cPresenceForm);
        return I3cPresence{target, verb == "join"};
    }
    if (verb != "interrupt") {
        refuseForm(std::string(i3cInterruptForm) + ", or " + i3cPresenceForm);
    }
    const std::string digits = words.next();
    expectEnd(words, i3cInterruptForm);
    const std::optional<Bytes> payload = digits.empty() ? Bytes{} : bytesOfHex(digits);
    if (!payload || payload->size() > maxInterruptPayload) {
        refuse("'" + digits + "' is no payload: expected up to 255 bytes as hexadecimal digits");
    }
    return I3cInterrupt{target, *payload};
}

Stimulus parseUart(Words& words) {
    if (words.next() != "receive" || words.atEnd()) {
        refuseForm(uartForm);
    }
    UartReceive received;
    while (!words.atEnd()) {
        // Text may have spaces in it.
        const std::string word = words.beginsWith("str:") ? words.rest() : words.next();
        const std::optional<Bytes> bytes = bytesOf(word);
        if (!bytes) {
            refuse("'" + word + "' is no byte: expected 0 to 255, hex:DIGITS or str:TEXT");
        }
        received.bytes.insert(received.bytes.end(), bytes->begin(), bytes->end());
    }
    if (received.bytes.size() > maxUartBytes) {
        refuse("too many bytes: at most 65535 arrive at once");
    }
    return received;
}

Stimulus parseFaultRequest(Words& words) {
    const std::string fault = words.next();
    expectEnd(words, faultForm);
    if (fault == "none") {
        return FaultRequest{};
    }
    return FaultRequest{parseFault(fault)};
}

/// One that is a word and nothing more.
Stimulus alone(const Words& words, const char* form, Stimulus stimulus) {
    expectEnd(words, form);
    return stimulus;
}

} // namespace

Stimulus parseStimulus(const std::string& line) {
    Words words(line);
    const std::string kind = words.next();
    if (kind == "gpio") {
        return parseGpio(words);
    }
    if (kind == "i2c") {
        return parseI2c(words);
    }
    if (kind == "i3c") {
        return parseI3c(words);
    }
    if (kind == "uart") {
        return parseUart(words);
    }
    if (kind == "fault") {
        return parseFaultRequest(words);
    }
    if (kind == "reset") {
        return alone(words, "reset", ResetStimulus{});
    }
    if (kind == "unplug") {
        return alone(words, "unplug", UnplugStimulus{});
    }
    if (kind == "plug") {
        return alone(words, "plug", PlugStimulus{});
    }
    refuse("'" + kind +
           "' is no stimulus: expected gpio, i2c, i3c, uart, fault, reset, unplug or "
           "plug");
}

const std::vector<std::string>& stimulusForms() {
    static const std::vector<std::string> forms{
        gpioForm, i2cSetForm, i2cNackForm, i3cInterruptForm, i3cPresenceForm,
        uartForm, faultForm,  "reset",     "unplug",         "plug"};
    return forms;
}

} // namespace virtual_adapter
