// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "watch/Event.hpp"

#include "i3c/Target.hpp"

#include <algorithm>
#include <cstdio>

namespace veltra {

namespace {

constexpr size_t payloadHeaderBytes = 8;

/// The announced bytes, as far as the frame carries them.
Bytes carried(const Inbox::Entry& entry, const uint8_t* data, size_t announced) {
    return {data, data + std::min(announced, entry.frame.size() - payloadHeaderBytes)};
}

std::string behindBlank(const std::string& text) {
    return text.empty() ? "" : " " + text;
}

} // namespace

std::string secondsOf(uint64_t nanoseconds) {
    char text[40];
    const uint64_t microseconds = nanoseconds / 1000;
    (void)std::snprintf(text, sizeof text, "%llu.%06llu",
                        static_cast<unsigned long long>(microseconds / 1'000'000),
                        static_cast<unsigned long long>(microseconds % 1'000'000));
    return text;
}

Event describeEvent(const Inbox::Entry& entry) {
    const Notification record = entry.notification();
    const std::string time = secondsOf(entry.timeNanoseconds);
    const auto describe = [&](const char* name, const Json& members, const std::string& text) {
        Event event;
        event.object = {{"event", name}, {"time", std::stod(time)}};
        event.object.add(members);
        event.text = time + " " + name + behindBlank(text);
        return event;
    };
    if (const I3cIbiData* const ibi = record.i3cIbi()) {
        const Bytes payload = carried(entry, ibi->payload, ibi->payloadLength);
        return describe("ibi", {{"address", ibi->address}, {"payload", hexDigits(payload)}},
                        hexNumber(ibi->address, 2) + behindBlank(hexWords(payload)));
    }
    if (const I3cHotJoinData* const join = record.i3cHotJoin()) {
        const std::string pid = hexDigits({std::begin(join->pid), std::end(join->pid)});
        const std::string kind = wordsOfDcr(join->bcrDcr[1]);
        return describe("hotjoin",
                        {{"address", join->dynamicAddress},
                         {"pid", pid},
                         {"bcr", join->bcrDcr[0]},
                         {"dcr", join->bcrDcr[1]}},
                        hexNumber(join->dynamicAddress, 2) + " " + pid + behindBlank(kind));
    }
    if (const GpioData* const gpio = record.gpio()) {
        return describe("gpio", {{"pin", gpio->value}}, std::to_string(gpio->value));
    }
    if (const UartRxData* const received = record.uartRx()) {
        const Bytes data = carried(entry, received->data, received->length);
        return describe("uart", {{"data", hexDigits(data)}}, hexWords(data));
    }
    return describe("unknown", {{"frame", hexDigits(entry.frame)}}, hexWords(entry.frame));
}

} // namespace veltra
