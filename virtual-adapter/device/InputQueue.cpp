// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/InputQueue.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

void InputQueue::hostWrites(Time now) {
    outputArrives = std::max(outputArrives, now) + frame;
    if (!keepsHostBehind) {
        return;
    }
    const auto response = oldestResponse();
    if (response != reports.end() && response->waits) {
        response->waits = false;
        response->due = outputArrives;
    }
}

void InputQueue::send(std::vector<Bytes> packets, Message message, Duration delay) {
    const bool isResponse = message == Message::Response;
    const bool waits = keepsHostBehind && isResponse && oldestResponse() != reports.end();
    lastDue = std::max(lastDue, outputArrives + delay);
    bool isFirst = true;
    for (Bytes& packet : packets) {
        lastDue += frame;
        reports.push_back({std::move(packet), lastDue, isResponse && isFirst, delay > Duration(0),
                           waits && isFirst});
        isFirst = false;
    }
}

std::optional<Bytes> InputQueue::take(Time now) {
    if (reports.empty() || reports.front().due > now) {
        return std::nullopt;
    }
    const bool wasResponse = reports.front().isResponse;
    Bytes bytes = std::move(reports.front().bytes);
    reports.pop_front();
    if (keepsHostBehind && wasResponse) {
        const auto next = oldestResponse();
        if (next != reports.end() && next->waits) {
            next->due = std::max(next->due, now + pause);
        }
    }
    return bytes;
}

std::optional<InputQueue::Time> InputQueue::nextDue() const {
    if (reports.empty()) {
        return std::nullopt;
    }
    return reports.front().due;
}

void InputQueue::keepHostBehind(Duration timeOfFrame) {
    frame = std::max(frame, timeOfFrame);
    keepsHostBehind = true;
}

void InputQueue::forgetAfter(Time now) {
    // What is behind a report that is not due is not due either.
    reports.erase(std::find_if(reports.begin(), reports.end(),
                               [=](const Report& report) { return report.due > now; }),
                  reports.end());
}

void InputQueue::hurry(Time now) {
    for (Report& report : reports) {
        if (!report.isDelayed) {
            report.due = std::min(report.due, now);
        }
    }
    forgetAfter(now);
}

InputQueue::Reports::iterator InputQueue::oldestResponse() {
    return std::find_if(reports.begin(), reports.end(),
                        [](const Report& report) { return report.isResponse; });
}

} // namespace virtual_adapter
