// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "replay/ReplayLink.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace virtual_adapter {

namespace {

constexpr size_t identifierSize = 2;
constexpr size_t headSize = 4;
constexpr size_t maxShownBytes = 32;

uint16_t u16At(const Frame& frame, size_t place) {
    return static_cast<uint16_t>(frame[place] | frame[place + 1] << 8U);
}

std::string hexadecimal(unsigned value, const char* format) {
    std::array<char, 16> text{};
    (void)std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

/// Command and payload, as a request is told apart from others.
std::string describe(const Frame& request) {
    if (request.size() < headSize) {
        return "a frame of " + std::to_string(request.size()) + " bytes";
    }
    std::string text =
        "command " + hexadecimal(u16At(request, identifierSize), "0x%04x") + ", payload";
    const size_t shown = std::min(request.size(), headSize + maxShownBytes);
    for (size_t i = headSize; i < shown; ++i) {
        text += hexadecimal(request[i], " %02x");
    }
    if (request.size() == headSize) {
        text += " none";
    } else if (shown < request.size()) {
        text += " ... (" + std::to_string(request.size() - headSize) + " bytes)";
    }
    return text;
}

std::string describe(const RecordedRequest& request) {
    return describe(request.frame) +
           (request.status ? ", answered with status " + hexadecimal(*request.status, "0x%04x")
                           : ", not answered");
}

bool isSameRequest(const Frame& left, const Frame& right) {
    return left.size() == right.size() && left.size() >= headSize &&
           std::equal(left.begin() + identifierSize, left.end(), right.begin() + identifierSize);
}

} // namespace

ReplayLink::ReplayLink(const Recording& played,
                       std::function<void(const std::string&)> whenDifferent)
    : recording(played),
      tellDifference(std::move(whenDifferent)),
      framing(played.settings.identity.variant.reportSize),
      identifiers(played.requests.size()),
      isDone(played.messages.size()) {
    sendDue();
}

bool ReplayLink::writeReport(const Bytes& report, Time /*now*/) {
    if (hasLeft) {
        return false;
    }
    return !framing.receiveUsbInTransferPackets(request, report) ||
           answer(std::exchange(request, {}));
}

bool ReplayLink::answer(const Frame& sent) {
    const std::optional<size_t> found = find(sent);
    if (!found) {
        differ(sent);
        return false;
    }
    identifiers[*found] = u16At(sent, 0);
    next = *found + 1;
    furthest = std::max(furthest, next);
    ++sentRequests;
    sendDue();
    hasLeft = recording.goneAfter && sentRequests >= *recording.goneAfter;
    return !recording.requests[*found].isRefused;
}

std::optional<size_t> ReplayLink::find(const Frame& sent) const {
    for (size_t i = 0; i < identifiers.size(); ++i) {
        const size_t candidate = (next + i) % identifiers.size();
        if (!identifiers[candidate] && isSameRequest(recording.requests[candidate].frame, sent)) {
            return candidate;
        }
    }
    return std::nullopt;
}

void ReplayLink::sendDue() {
    while (firstMessage < isDone.size() && isDone[firstMessage]) {
        ++firstMessage;
    }
    for (size_t i = firstMessage; i < isDone.size(); ++i) {
        const RecordedMessage& message = recording.messages[i];
        if (message.requestsBefore > furthest) {
            break;
        }
        const bool isDue =
            (message.requestsBefore == 0 || identifiers[message.requestsBefore - 1]) &&
            (!message.answers || identifiers[*message.answers]);
        if (isDone[i] || !isDue) {
            continue;
        }
        isDone[i] = true;
        Frame frame = message.frame;
        if (message.answers) {
            frame[0] = lowByte(*identifiers[*message.answers]);
            frame[1] = highByte(*identifiers[*message.answers]);
        }
        std::vector<Bytes> packets;
        framing.createUsbOutTransferPackets(packets, frame);
        for (Bytes& packet : packets) {
            packet.resize(framing.getEndpointSize());
            reports.push_back(std::move(packet));
        }
    }
}

void ReplayLink::differ(const Frame& sent) {
    hasLeft = true;
    const std::string expected = missing();
    tellDifference("request " + std::to_string(sentRequests + 1) +
                   " was not recorded\n  sent:     " + describe(sent) +
                   "\n  recorded: " + (expected.empty() ? "nothing more" : expected));
}

std::string ReplayLink::missing() const {
    for (size_t i = 0; i < identifiers.size(); ++i) {
        if (!identifiers[i] && !recording.requests[i].isRefused) {
            return describe(recording.requests[i]);
        }
    }
    return {};
}

std::optional<Bytes> ReplayLink::takeInputReport(Time /*now*/) {
    if (reports.empty()) {
        return std::nullopt;
    }
    Bytes report = std::move(reports.front());
    reports.pop_front();
    return report;
}

std::optional<ReplayLink::Time> ReplayLink::nextInputDue() const {
    return reports.empty() ? std::nullopt : std::optional<Time>(Time());
}

std::string ReplayLink::tell(const std::string& /*line*/, Time /*now*/) {
    return "a recording is played, to which nothing happens that was not recorded";
}

} // namespace virtual_adapter
