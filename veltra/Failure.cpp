// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Failure.hpp"

#include "Words.hpp"

#include <veltrasdk/status.h>

#include <cctype>
#include <new>

namespace veltra {

namespace {

/// "DataNotAcknowledged" as it is spoken: "data not acknowledged".
std::string spoken(const std::string& name) {
    std::string words;
    for (const char letter : name) {
        if (std::isupper(static_cast<unsigned char>(letter)) != 0 && !words.empty()) {
            words += ' ';
        }
        words += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    }
    return words;
}

std::string wordsOf(uint16_t status, const Operation& operation) {
    switch (status) {
    case VeltraStatus_NoVoltage:
        return concerns(operation, "i3c") ? "the I3C voltage is off" : "the I/O voltage is off";
    case VeltraStatus_NoPullUp:
        return "bus " + std::to_string(operation.bus.value_or(0)) + " has no pull-up resistors";
    case VeltraStatus_NotInitialised:
        return concerns(operation, "i3c")    ? "the I3C bus is not initialised"
               : concerns(operation, "gpio") ? "the pin has not been configured"
                                             : "not initialised";
    default:
        const char* const name = veltraStatusName(status);
        return name == nullptr ? "refused" : spoken(name);
    }
}

Failure ofLibrary(uint16_t result, int timeoutMs) {
    switch (result) {
    case ResultCode_NoResponse:
        return Failure(ExitStatus::NoAnswer, "no-response",
                       "no response within " + std::to_string(timeoutMs) + " ms")
            .advise("Is the adapter well? veltra doctor; or give it longer: -t MS");
    case ResultCode_NotConnected:
        return Failure(ExitStatus::NoAnswer, "gone", "the adapter has gone")
            .advise("Plug it in again, then: veltra list");
    case ResultCode_InvalidArgument:
        return {ExitStatus::CommandLine, "usage", "a value is out of range"};
    default:
        return {ExitStatus::NoAnswer, "out-of-step",
                "the answer does not fit the request (" + spoken(veltraStatusName(result)) + ")"};
    }
}

bool isOfLibrary(uint16_t result) {
    return result == ResultCode_NoResponse || result == ResultCode_NotConnected ||
           result == ResultCode_UnexpectedResponse || result == ResultCode_InvalidArgument ||
           result == ResultCode_ShortResponse;
}

} // namespace

bool concerns(const Operation& operation, const std::string& family) {
    return operation.family == family || operation.name.rfind(family + ".", 0) == 0;
}

std::string describeStatus(uint16_t status, const Operation& operation) {
    return wordsOf(status, operation) + " (status " + hexNumber(status, 4) + ")";
}

Failure Failure::ofResult(uint16_t result, const Operation& operation, int timeoutMs) {
    Failure failure = isOfLibrary(result) ? ofLibrary(result, timeoutMs)
                                          : Failure(ExitStatus::Refused, "status",
                                                    describeStatus(result, operation));
    failure.status = result;
    failure.during = operation;
    return failure;
}

Failure Failure::ofUsage(std::string text) {
    return {ExitStatus::CommandLine, "usage", std::move(text)};
}

Failure Failure::interruption() {
    return {ExitStatus::Interrupted, "interrupted", "interrupted"};
}

Failure Failure::ofException(const std::exception& error) {
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) {
        return {ExitStatus::Refused, "memory", "not enough memory"};
    }
    return {ExitStatus::Refused, "internal", error.what()};
}

} // namespace veltra
