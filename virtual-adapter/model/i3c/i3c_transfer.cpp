// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i3c/i3c_transfer.hpp"

#include "model/checks.hpp"
#include "model/i3c/i3c_records.hpp"

#include <algorithm>

namespace virtual_adapter {

namespace {

constexpr unsigned directionBit = 0x01;
constexpr unsigned modeShift = 1;
constexpr unsigned modeMask = 0x03;
constexpr unsigned flagsShift = 3;
constexpr unsigned knownFlags = I3cTransferFlags_SkipBroadcastAddress | I3cTransferFlags_NoStop;

constexpr size_t maxSubAddressLength = 4;

constexpr uint8_t hdrReadBit = 0x80;

constexpr uint8_t targetResetPattern = 0;
constexpr uint8_t hdrExitPattern = 1;

} // namespace

/// The payload of 0x1908.
struct I3cTransfer::Transfer {
    explicit Transfer(ByteReader& request)
        : address(request.u8()),
          control(request.u8()),
          hdrCommandCode(request.u8()),
          subAddressLength(request.u8()),
          subAddressField(request.bytes(maxSubAddressLength)),
          length(request.u16()),
          data(isRead() ? Bytes{} : request.bytes(length)) {}

    uint8_t address;
    unsigned control;
    uint8_t hdrCommandCode;
    size_t subAddressLength;
    Bytes subAddressField;
    uint16_t length;
    Bytes data;

    [[nodiscard]] bool isRead() const { return (control & directionBit) != 0; }
    [[nodiscard]] unsigned mode() const { return control >> modeShift & modeMask; }
    [[nodiscard]] unsigned flags() const { return control >> flagsShift; }
    [[nodiscard]] bool has(I3cTransferFlags flag) const { return (flags() & flag) != 0; }

    [[nodiscard]] bool valuesKnown() const {
        if (address >= i3cBroadcastAddress || mode() > I3cTransferMode_LegacyI2c ||
            (flags() & ~knownFlags) != 0 || subAddressLength > maxSubAddressLength) {
            return false;
        }
        const auto padding =
            subAddressField.begin() + static_cast<Bytes::difference_type>(subAddressLength);
        if (std::any_of(padding, subAddressField.end(), [](uint8_t byte) { return byte != 0; })) {
            return false;
        }
        if (mode() != I3cTransferMode_HdrDdr) {
            return hdrCommandCode == 0;
        }
        // HDR-DDR moves words of two bytes, and its command code tells the direction too.
        return flags() == 0 && subAddressLength == 0 && length % 2 == 0 &&
               isRead() == ((hdrCommandCode & hdrReadBit) != 0);
    }

    [[nodiscard]] Bytes subAddress() const {
        Bytes bytes = subAddressField;
        bytes.resize(subAddressLength);
        return bytes;
    }

    /// What a write sends behind the address.
    [[nodiscard]] Bytes written() const {
        Bytes bytes = subAddress();
        bytes.insert(bytes.end(), data.begin(), data.end());
        return bytes;
    }
};

Answer I3cTransfer::transfer(ByteReader& request) {
    const Transfer wanted(request);
    Status status = controller.onInitialisedBus(check(request, wanted.valuesKnown()));
    if (status != Status::Success) {
        return status;
    }
    Bytes received;
    controller.start();
    status = carryOut(wanted, received);
    if (status == Status::Success && wanted.has(I3cTransferFlags_NoStop)) {
        controller.hold();
    } else {
        controller.stop();
    }
    if (!wanted.isRead()) {
        return status;
    }
    return {status, ByteWriter()
                        .u16(wanted.length)
                        .countU16(static_cast<uint16_t>(received.size()))
                        .bytes(received)};
}

Answer I3cTransfer::busPattern(ByteReader& request) {
    const uint8_t pattern = request.u8();
    const Status status = controller.onInitialisedBus(
        check(request, pattern == targetResetPattern || pattern == hdrExitPattern));
    if (status != Status::Success) {
        return status;
    }
    if (pattern == targetResetPattern) {
        for (I3cTarget* target : controller.getBus().powered()) {
            target->receiveTargetResetPattern();
        }
    }
    controller.stop();
    return Status::Success;
}

Status I3cTransfer::carryOut(const Transfer& wanted, Bytes& received) {
    switch (wanted.mode()) {
    case I3cTransferMode_Sdr:
        return carryOutSdr(wanted, received);
    case I3cTransferMode_HdrDdr:
        return carryOutHdrDdr(wanted, received);
    default:
        return carryOutLegacy(wanted, received);
    }
}

Status I3cTransfer::carryOutSdr(const Transfer& wanted, Bytes& received) {
    I3cTarget* target = controller.getBus().withDynamicAddress(wanted.address);
    if (target == nullptr || !controller.isHeardBy(*target)) {
        return Status::NotAcknowledged;
    }
    // The limits are those of private SDR transfers.
    if (wanted.written().size() > target->maxWriteLength()) {
        return Status::LengthAboveLimit;
    }
    exchange(*target, wanted, std::min(wanted.length, target->maxReadLength()), received);
    return Status::Success;
}

Status I3cTransfer::carryOutHdrDdr(const Transfer& wanted, Bytes& received) {
    I3cTarget* target = controller.getBus().withDynamicAddress(wanted.address);
    if (target == nullptr || !target->supportsHdrDdr()) {
        return Status::NotAcknowledged;
    }
    if (wanted.isRead()) {
        received = target->readHdrDdr(wanted.hdrCommandCode, wanted.length);
    } else {
        target->writeHdrDdr(wanted.hdrCommandCode, wanted.data);
    }
    return Status::Success;
}

Status I3cTransfer::carryOutLegacy(const Transfer& wanted, Bytes& received) {
    // A frame that the broadcast address opens is I3C's own. A target without a dynamic address
    // takes part in one that it does not open, as an I2C device.
    if (wanted.has(I3cTransferFlags_SkipBroadcastAddress)) {
        if (I3cTarget* target = controller.getBus().unassigned(wanted.address)) {
            exchange(*target, wanted, wanted.length, received);
            return Status::Success;
        }
    }
    if (!controller.isHeardByLegacy(wanted.address)) {
        return Status::NotAcknowledged;
    }
    const auto end = I2cController::End::Hold;
    I2cController& legacy = controller.getLegacyController();
    return wanted.isRead()
               ? legacy.read(wanted.address, wanted.subAddress(), wanted.length, end, received)
               : legacy.write(wanted.address, wanted.written(), end);
}

void I3cTransfer::exchange(I3cTarget& target, const Transfer& wanted, size_t readLength,
                           Bytes& received) {
    target.write(wanted.written());
    if (wanted.isRead()) {
        received = target.read(readLength);
    }
}

} // namespace virtual_adapter
