// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "UnreliableAdapter.hpp"

#include "protocol/CommandCode.hpp"

#include <utility>

namespace fuzzing {

namespace {

constexpr size_t headerSize = 4;
constexpr size_t minFrameSize = 6;
constexpr std::chrono::microseconds maxReadTime{50};

/// Not an identifier's byte, in a run that has fewer requests, and no mark.
constexpr uint8_t foreignByte = 0xF7;

unsigned word(const Bytes& frame, size_t offset) {
    return frame.at(offset) | unsigned{frame.at(offset + 1)} << 8U;
}

/// What the answer to a request consists of, header and status aside.
Bytes payloadFor(const Bytes& request) {
    const auto marks = [](uint8_t number, size_t count) {
        return Bytes(count, UnreliableAdapter::markOf(number));
    };
    switch (static_cast<CommandCode>(word(request, 2))) {
    case CommandCode::I2cRead: {
        Bytes payload(3);
        const Bytes data = marks(request.at(7), word(request, 5));
        payload.insert(payload.end(), data.begin(), data.end());
        return payload;
    }
    case CommandCode::GpioDigitalRead:
        return marks(request.at(4), 1);
    case CommandCode::GetUsbString: {
        Bytes payload{6};
        const Bytes text = marks(request.at(4), 5);
        payload.insert(payload.end(), text.begin(), text.end());
        return payload;
    }
    default:
        return {};
    }
}

/// Of an operation whose request is @p request.
uint8_t markIn(const Bytes& request) {
    switch (static_cast<CommandCode>(word(request, 2))) {
    case CommandCode::I2cRead:
        return UnreliableAdapter::markOf(request.at(7));
    case CommandCode::UartSendMessage:
        return request.at(6);
    default:
        return UnreliableAdapter::markOf(request.at(4));
    }
}

} // namespace

void Outages::post(Outage outage) {
    const std::lock_guard<std::mutex> lock(mutex);
    posted.push_back(outage);
    changed.notify_one();
}

void Outages::close() {
    const std::lock_guard<std::mutex> lock(mutex);
    isClosed = true;
    changed.notify_one();
}

std::optional<Outage> Outages::next() {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait(lock, [this] { return isClosed || !posted.empty(); });
    if (posted.empty()) {
        return std::nullopt;
    }
    const Outage outage = posted.front();
    posted.pop_front();
    return outage;
}

UnreliableAdapter::UnreliableAdapter(bool highSpeed, bool unlimited, Bytes ofRequests,
                                     Outages& outagesToPost)
    : protocol(highSpeed ? 1024 : 64),
      waitsWithoutLimit(unlimited),
      behaviours(std::move(ofRequests)),
      outages(outagesToPost),
      next(behaviours.data(), behaviours.size()) {
    const uint16_t productId =
        highSpeed ? VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED : VELTRASDK_USB_PRODUCT_ID_FULL_SPEED;
    hid.attach({"1-1:1.0", VELTRASDK_USB_VENDOR_ID, productId, L"VA-0001"});
    hid.limitReads(maxReadTime);
    hid.respond([this](const Bytes& report) { return answersTo(report); });
}

std::vector<Bytes> UnreliableAdapter::answersTo(const Bytes& report) {
    require(!isWritten.exchange(true), "one report is written at a time");
    require(report.size() == 1 + protocol.getEndpointSize(), "a whole report is written");
    const unsigned header = word(report, 1);
    const bool isFirst = (header & 1U) != 0;
    const bool isLast = (header & 2U) != 0;
    require(isFirst == request.empty(), "the reports of two requests are not mixed");
    if (isFirst) {
        current = next.byte();
        reportsOfRequest = 0;
    }
    hid.failWriting(std::nullopt);
    const auto payload = report.begin() + 3;
    request.insert(request.end(), payload,
                   payload + static_cast<std::ptrdiff_t>(header >> 2U & 0x3FFU));
    const bool isToFail = behaviour() == WriteAndReadError || (behaviour() == Stall && !hasStalled);
    std::vector<Bytes> answers;
    if (isToFail && (isLast || reportsOfRequest == how())) {
        failWrite(behaviour() == WriteAndReadError);
        request.clear();
    } else if (isLast) {
        answers = answersToRequest(std::exchange(request, {}));
    }
    ++reportsOfRequest;
    isWritten = false;
    return answers;
}

void UnreliableAdapter::failWrite(bool unplugged) {
    hid.failWriting(-1);
    if (unplugged) {
        hid.deliverReadError();
        interrupt(Outage::Reconnect);
    } else {
        hasStalled = true;
    }
}

void UnreliableAdapter::interrupt(std::optional<Outage> outage) {
    if (outage || waitsWithoutLimit) {
        outages.post(outage.value_or(Outage::Reconnect));
    }
}

void UnreliableAdapter::append(std::vector<Bytes>& reports, const Bytes& message) const {
    const size_t before = reports.size();
    protocol.createUsbOutTransferPackets(reports, message);
    for (size_t i = before; i < reports.size(); ++i) {
        reports[i].resize(protocol.getEndpointSize());
    }
}

/// A report of any length whose bytes belong to nobody.
Bytes UnreliableAdapter::malformedReport(uint8_t kind) const {
    Bytes report(kind % 3 == 0 ? kind : protocol.getEndpointSize(), foreignByte);
    if (report.size() > 1) {
        report[0] = static_cast<uint8_t>(kind << 1U) | (lastWasTooShort || kind % 2 != 0 ? 1U : 0U);
    }
    return report;
}

std::vector<Bytes> UnreliableAdapter::answersToRequest(const Bytes& whole) {
    if (static_cast<CommandCode>(word(whole, 2)) == CommandCode::EnterBootMode) {
        return {};
    }
    require(identifiers.insert(word(whole, 0)).second, "no two requests have the same identifier");
    Bytes own(whole.begin(), whole.begin() + headerSize);
    own.insert(own.end(), 2, 0x00);
    const Bytes payload = payloadFor(whole);
    own.insert(own.end(), payload.begin(), payload.end());

    std::vector<Bytes> answers = std::exchange(late, {});
    switch (behaviour()) {
    case Late:
        append(late, own);
        interrupt(std::nullopt);
        return answers;
    case Lost:
        interrupt(std::nullopt);
        return answers;
    case Doubled:
        append(answers, own);
        break;
    case Foreign: {
        Bytes foreign = own;
        foreign[0] = foreignByte;
        foreign.resize(foreign.size() + how(), foreignByte);
        append(answers, foreign);
        break;
    }
    case WrongCommand: {
        Bytes foreign = own;
        foreign[2] = static_cast<uint8_t>(foreign[2] ^ (how() | 1U));
        foreign.resize(foreign.size() + how(), foreignByte);
        append(answers, foreign);
        break;
    }
    case Malformed:
        for (uint8_t kind = how(); kind < 0x10; kind = static_cast<uint8_t>(kind + 3)) {
            answers.push_back(malformedReport(kind));
        }
        break;
    case Cut:
        cut.at(markIn(whole)) = true;
        own.resize(std::min(own.size(), minFrameSize + size_t{8} * how()));
        break;
    case TooShort:
        own.resize(how() % minFrameSize);
        append(answers, own);
        lastWasTooShort = true;
        interrupt(std::nullopt);
        return answers;
    case Refused:
        own[4] = markIn(whole);
        own[5] = refusal;
        break;
    case ReadError:
        hid.deliverReadError();
        interrupt(how() % 2 == 0 ? std::optional(Outage::Reconnect) : std::nullopt);
        return answers;
    case Notified:
        append(answers, {0x00, 0x00, 0x81, 0x14, 0x00, 0x00, foreignByte});
        append(answers, {0x00, 0x00, 0x81, 0x10, 0x00, 0x00, how(), 0x00, foreignByte});
        break;
    case Interrupted:
        outages.post(static_cast<Outage>(how() % 3));
        if (how() >= 8) {
            return answers;
        }
        break;
    default:
        break;
    }
    lastWasTooShort = false;
    append(answers, own);
    return answers;
}

} // namespace fuzzing
