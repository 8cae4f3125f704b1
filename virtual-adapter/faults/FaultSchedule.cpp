// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/FaultSchedule.hpp"

namespace virtual_adapter {

FaultSchedule::FaultSchedule(const std::vector<Fault>& faults) {
    for (const Fault& fault : faults) {
        entries.push_back({fault});
    }
}

std::string FaultSchedule::add(const Fault& fault) {
    if (spanOf(fault.kind) == FaultSpan::FromTheStart) {
        return textOf(fault) + " lasts from the start: it is an option of 'run'";
    }
    if (!fault.place.command && fault.place.request <= requests) {
        return "request " + std::to_string(fault.place.request) + " has passed: the next is " +
               std::to_string(requests + 1) + "; say where, as @" + std::to_string(requests + 1) +
               " or @i2c-read";
    }
    entries.push_back({fault});
    return {};
}

FaultSet FaultSchedule::next(Code code) const {
    FaultSet striking;
    for (const Entry& entry : entries) {
        if (entry.strikes(code, requests + 1)) {
            striking.insert(entry.fault.kind);
        }
    }
    return striking;
}

FaultSet FaultSchedule::begin(Code code) {
    const FaultSet striking = next(code);
    ++requests;
    for (Entry& entry : entries) {
        entry.struck = entry.struck || entry.strikes(code, requests);
        if (entry.concerns(code)) {
            ++entry.seen;
        }
    }
    return striking;
}

bool FaultSchedule::Entry::concerns(Code code) const {
    const std::optional<CommandCode>& command = fault.place.command;
    return command && code == static_cast<uint16_t>(*command);
}

bool FaultSchedule::Entry::strikes(Code code, size_t request) const {
    if (struck) {
        return spanOf(fault.kind) == FaultSpan::ForGood;
    }
    if (fault.place.command) {
        return concerns(code) && seen + 1 == fault.place.request;
    }
    return request == fault.place.request;
}

} // namespace virtual_adapter
