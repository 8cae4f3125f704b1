// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Session.hpp"

#include "AdapterChoice.hpp"
#include "Hints.hpp"
#include "Inbox.hpp"
#include "Interruption.hpp"

#include <limits>

namespace veltra {

namespace {

/// -1 waits without limit, as the library has it.
int parseTimeout(const std::string& text) {
    return text == "-1" ? -1
                        : static_cast<int>(
                              parseNumber("time-out", text, 0, std::numeric_limits<int>::max()));
}

std::string answerInWords(uint16_t result, const Operation& operation, const Bytes* answer) {
    const std::string status = result == 0 ? "done" : describeStatus(result, operation);
    return "< " + status + (answer == nullptr || answer->empty() ? "" : ": " + hexWords(*answer));
}

} // namespace

Session::Session(const Options& given, Output& tells)
    : options(&given), output(tells), timeoutMs(parseTimeout(given.timeout)) {}

Session::~Session() = default;

void Session::begin(Operation operation, const Options& forIt) {
    current = std::move(operation);
    options = &forIt;
}

void Session::concern(const std::string& subject, std::optional<int> bus) {
    current.subject += (subject.empty() ? "" : " ") + subject;
    current.bus = bus;
}

void Session::open() {
    const VeltraSDK_AdapterInfo chosen = chooseAdapter(options->device);
    auto connection = std::make_unique<VeltraSDK>(timeoutMs);
    connection->setStrict(true);
    if (!connection->connect(chosen.path)) {
        throw whyNotOpened(chosen);
    }
    link = std::move(connection);
    if (keepsArrivals) {
        inbox();
    }
}

VeltraSDK& Session::adapter() {
    if (!link) {
        open();
    }
    return *link;
}

Inbox& Session::inbox() {
    VeltraSDK& connected = adapter();
    if (!arrived) { // which opening the link may have changed
        arrived = std::make_unique<Inbox>(connected);
    }
    return *arrived;
}

uint16_t Session::attempt(const std::string& request, const Call& call, const Bytes* answer) {
    if (rehearses()) {
        output.rehearse(request);
        return ResultCode_Success;
    }
    adapter();
    if (Interruption::requested()) {
        throw Failure::interruption();
    }
    return send(request, call, answer);
}

uint16_t Session::send(const std::string& request, const Call& call, const Bytes* answer) {
    output.trace("> " + request);
    const uint16_t result = call(*link);
    if (options->verbose) { // an answer may be long
        output.trace(answerInWords(result, current, answer));
    }
    return result;
}

void Session::perform(const std::string& request, const Call& call, const Bytes* answer) {
    const uint16_t result = attempt(request, call, answer);
    if (result != ResultCode_Success) {
        throw failureOf(result);
    }
}

void Session::takeBack(const std::string& request, const Call& call) {
    if (link && !rehearses()) {
        send(request, call, nullptr);
    }
}

Failure Session::failureOf(uint16_t result) const {
    Failure failure = Failure::ofResult(result, current, timeoutMs);
    if (failure.kind == "status") {
        failure.hint = hintFor(result, current, *options);
    }
    return failure;
}

void Session::setUp(const std::string& name, const std::string& request, const Call& call) {
    if (settings[name] == request) {
        return;
    }
    settings.erase(name);
    perform(request, call);
    settings[name] = request;
}

uint16_t Session::millivolts() {
    const uint16_t wanted = parseVolts(options->voltage);
    if (!options->voltageLimit.empty() && wanted > parseVolts(options->voltageLimit)) {
        throw Failure::ofUsage("-V " + options->voltage + " is above the limit of " +
                               options->voltageLimit + " V that VELTRA_VOLTAGE_LIMIT sets");
    }
    return wanted;
}

void Session::supplyPins() {
    if (!options->voltage.empty()) {
        const uint16_t wanted = millivolts();
        setUp("pins' supply", "I/O voltage: " + std::to_string(wanted) + " mV, on",
              [wanted](VeltraSDK& sdk) { return sdk.i2cSetBusVoltage(wanted, true); });
    }
}

void Session::supplyI3c() {
    if (!options->voltage.empty()) {
        const uint16_t wanted = millivolts();
        setUp("I3C supply", "I3C voltage: " + std::to_string(wanted) + " mV",
              [wanted](VeltraSDK& sdk) { return sdk.i3cSetBusVoltage(wanted); });
    }
}

} // namespace veltra
