// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/Fault.hpp"

#include "faults/CommandNames.hpp"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace virtual_adapter {

namespace {

constexpr size_t maxRequest = 1'000'000'000;

std::string joined(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) {
        list += (list.empty() ? "" : ", ") + name;
    }
    return list;
}

[[noreturn]] void refusePlace(const std::string& place) {
    throw std::invalid_argument(
        "'@" + place + "' is no place: expected @N, @COMMAND or @COMMAND:N, N from 1 to " +
        std::to_string(maxRequest) + ", COMMAND one of " + joined(commandNames()));
}

std::optional<size_t> parseNumber(const std::string& text) {
    size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < 1 || number > maxRequest) {
        return {};
    }
    return number;
}

FaultPlace parsePlace(const std::string& text) {
    if (const std::optional<size_t> request = parseNumber(text)) {
        return {std::nullopt, *request};
    }
    const size_t colon = text.find(':');
    const std::optional<CommandCode> command = findCommand(text.substr(0, colon));
    const std::optional<size_t> request =
        colon == std::string::npos ? 1 : parseNumber(text.substr(colon + 1));
    if (!command || !request) {
        refusePlace(text);
    }
    return {command, *request};
}

const FaultName& named(FaultKind kind) {
    const std::vector<FaultName>& names = faultNames();
    return *std::find_if(names.begin(), names.end(),
                         [=](const FaultName& fault) { return fault.kind == kind; });
}

} // namespace

const std::vector<FaultName>& faultNames() {
    static const std::vector<FaultName> names{
        {"late-response", FaultKind::LateResponse, FaultSpan::Once},
        {"lost-response", FaultKind::LostResponse, FaultSpan::Once},
        {"wrong-identifier", FaultKind::WrongIdentifier, FaultSpan::Once},
        {"short-frame", FaultKind::ShortFrame, FaultSpan::Once},
        {"unplug", FaultKind::Unplug, FaultSpan::ForGood},
        {"stall", FaultKind::Stall, FaultSpan::ForGood},
        {"over-long-count", FaultKind::OverLongCount, FaultSpan::ForGood},
        {"notification-storm", FaultKind::NotificationStorm, FaultSpan::Once},
        {"lost-notification", FaultKind::LostNotification, FaultSpan::Once},
        {"address-nack", FaultKind::AddressNack, FaultSpan::Once},
        {"data-nack", FaultKind::DataNack, FaultSpan::Once},
        {"flipped-bit", FaultKind::FlippedBit, FaultSpan::Once},
        {"stuck-bus", FaultKind::StuckBus, FaultSpan::Once},
        {"write-protected", FaultKind::WriteProtected, FaultSpan::ForGood},
        {"no-permission", FaultKind::NoPermission, FaultSpan::FromTheStart},
        {"lost-reports", FaultKind::LostReports, FaultSpan::FromTheStart}};
    return names;
}

std::string faultNameList(FaultsOf whom) {
    std::vector<std::string> names;
    for (const FaultName& fault : faultNames()) {
        if (whom == FaultsOf::AdapterAndHost || fault.span != FaultSpan::FromTheStart) {
            names.emplace_back(fault.name);
        }
    }
    return joined(names);
}

FaultSpan spanOf(FaultKind kind) {
    return named(kind).span;
}

Fault parseFault(const std::string& text) {
    const size_t at = text.find('@');
    const std::string name = text.substr(0, at);
    const std::vector<FaultName>& names = faultNames();
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](const FaultName& fault) { return fault.name == name; });
    if (found == names.end()) {
        throw std::invalid_argument("'" + name + "' is no fault: expected one of " +
                                    faultNameList());
    }
    Fault fault{found->kind, {}};
    if (at != std::string::npos) {
        if (found->span == FaultSpan::FromTheStart) {
            throw std::invalid_argument(name + " lasts from the start and has no place");
        }
        fault.place = parsePlace(text.substr(at + 1));
    }
    return fault;
}

std::string textOf(const Fault& fault) {
    const FaultName& name = named(fault.kind);
    const FaultPlace& place = fault.place;
    if (name.span == FaultSpan::FromTheStart) {
        return name.name;
    }
    const std::string request = std::to_string(place.request);
    return std::string(name.name) + "@" +
           (place.command ? std::string(commandName(*place.command)) + ":" + request : request);
}

} // namespace virtual_adapter
