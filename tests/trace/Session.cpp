// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "trace/Session.hpp"

#include <algorithm>

namespace test_support {

namespace {

constexpr uint16_t vendorOfAdapters = 0x1209;

} // namespace

std::string shown(const Bytes& bytes) {
    return "[" + hexLine(bytes) + "]";
}

std::string shown(const std::string& bytes) {
    return shown(Bytes(bytes.begin(), bytes.end()));
}

std::string shown(const std::optional<uint8_t>& value) {
    return value ? shown(*value) : "none";
}

std::string shown(const I3cTargetInfo& target) {
    return shown(Bytes{target.staticAddress, target.dynamicAddress}) +
           shown(Bytes(target.pid, target.pid + sizeof target.pid)) +
           shown(Bytes{target.bcr, target.dcr, target.configuration}) +
           shown(target.maxWriteLength) + "," + shown(target.maxReadLength);
}

Bytes longNotification() {
    Bytes notification{0x00, 0x00, 0x81, 0x10, 0x00, 0x00, 0x14, 0x05};
    notification.resize(notification.size() + 1300, 0x77);
    return notification;
}

Session::Session(uint16_t productId, size_t size) : reportSize(size) {
    hid.attach({"1-1:1.0", vendorOfAdapters, productId, L"VA-0001"});
    hid.settleWrites(true);
    hid.respond([this](const Bytes& report) { return answersTo(report); });
    hid.record([this](const std::string& call) { record(call); });
}

void Session::append(const std::string& line) {
    const std::lock_guard<std::mutex> lock(mutex);
    lines.push_back(line);
}

void Session::record(const std::string& call) {
    const bool isFailedRead = call.find("): -1") != std::string::npos;
    const bool isRead = call.find("hid_read_timeout") == 0;
    const std::lock_guard<std::mutex> lock(mutex);
    if (!isFailedRead || !readsFail) {
        lines.push_back(call);
    }
    readsFail = isFailedRead || (readsFail && !isRead && call.find("hid_close") != 0);
}

void Session::deliver(const Bytes& message) {
    for (Bytes& report : reportsOf(message)) {
        hid.deliver(std::move(report));
    }
    say("handled", hid.waitUntilDrained());
}

void Session::unplug() {
    hid.failWriting(-1);
    hid.failReading(true);
    say("read", hid.waitForReads(hid.readCalls() + 2));
}

void Session::plugIn() {
    hid.failReading(false);
    hid.failWriting(std::nullopt);
}

std::vector<Bytes> Session::reportsOf(const Bytes& message) const {
    const size_t capacity = reportSize - 2;
    std::vector<Bytes> reports;
    for (size_t offset = 0; offset < message.size(); offset += capacity) {
        const size_t length = std::min(capacity, message.size() - offset);
        const size_t flags =
            (offset == 0 ? 1U : 0U) | (offset + length == message.size() ? 2U : 0U);
        const size_t header = flags | length << 2U;
        Bytes report{static_cast<uint8_t>(header & 0xFFU), static_cast<uint8_t>(header >> 8U)};
        const auto first = message.begin() + static_cast<std::ptrdiff_t>(offset);
        report.insert(report.end(), first, first + static_cast<std::ptrdiff_t>(length));
        report.resize(reportSize);
        reports.push_back(std::move(report));
    }
    return reports;
}

std::vector<Bytes> Session::answersTo(const Bytes& report) {
    const bool isFirst = (report[1] & 1U) != 0;
    const bool isLast = (report[1] & 2U) != 0;
    if (isFirst) {
        response.assign(report.begin() + 3, report.begin() + 7);
    }
    const bool isBootMode = response[2] == 0x02 && response[3] == 0x04;
    if (!isLast || isBootMode || !isAnswering) {
        return {};
    }
    response.insert(response.end(), {0x00, 0x00, 0x05, 0x00, 0x05, 0x00});
    for (uint8_t letter = 'A'; letter <= 'Z'; ++letter) {
        response.push_back(letter);
    }
    const bool isRead = response[2] == 0x05 && response[3] == 0x09;
    response.resize(response.size() + (isRead ? 1100 : 0), 0x11);
    return reportsOf(response);
}

} // namespace test_support
