// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/Device.hpp"

#include <algorithm>
#include <deque>
#include <memory>
#include <utility>

namespace usbip {

/// A write of this takes the EchoDevice off its bus.
inline const Bytes leave{'l', 'e', 'a', 'v', 'e'};

/// A device of which every read returns what was written by the oldest write not read yet. Control
/// transfers bring zeros.
class EchoDevice : public Device {
public:
    explicit EchoDevice(Receiver receiver) : completed(std::move(receiver)) {}

    void submit(Transfer transfer, Time now) override {
        if (transfer.endpointAddress == 0x81) {
            reads.push_back(transfer.id);
        } else if (transfer.endpointAddress == 0x80) {
            completed({transfer.id, Status::Completed, transfer.length, Bytes(transfer.length)});
        } else {
            onBus = onBus && transfer.data != leave;
            completed({transfer.id, Status::Completed, transfer.data.size(), {}});
            if (transfer.endpointAddress == 0x01) {
                written.push_back(std::move(transfer.data));
            }
        }
        serve(now);
    }

    bool cancel(uint64_t id) override {
        const auto found = std::find(reads.begin(), reads.end(), id);
        if (found == reads.end()) {
            return false;
        }
        reads.erase(found);
        return true;
    }

    void serve(Time /*now*/) override {
        while (!reads.empty() && !onBus) {
            endRead(Status::Unplugged, {});
        }
        while (!reads.empty() && !written.empty()) {
            endRead(Status::Completed, written.front());
            written.pop_front();
        }
    }

    [[nodiscard]] std::optional<Time> nextDue() const override { return std::nullopt; }
    [[nodiscard]] bool isOnBus() const override { return onBus; }

private:
    void endRead(Status status, const Bytes& data) {
        completed({reads.front(), status, data.size(), data});
        reads.pop_front();
    }

    Receiver completed;
    std::deque<uint64_t> reads;
    std::deque<Bytes> written;
    bool onBus = true;
};

inline Description fullSpeedDescription() {
    Description description;
    description.maker = "tests";
    description.speed = Speed::Full;
    description.vendorId = 0x1209;
    description.productId = 0x0001;
    description.deviceRelease = 0x0100;
    description.interfaces = {{3, 0, 0}};
    return description;
}

inline ExportedDevice exportedEcho() {
    return {
        fullSpeedDescription(),
        [](Device::Receiver receiver) { return std::make_unique<EchoDevice>(std::move(receiver)); },
        false};
}

} // namespace usbip
