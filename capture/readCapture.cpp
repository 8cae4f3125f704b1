// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capture/readCapture.hpp"

#include "capture/format.hpp"

#include "bytes/ByteReader.hpp"

#include <algorithm>
#include <string>
#include <utility>

namespace capture {

using virtual_adapter::ByteOrder;
using virtual_adapter::ByteReader;
using virtual_adapter::Bytes;

namespace {

constexpr uint64_t nanosecondsPerSecond = 1'000'000'000;
constexpr uint8_t microseconds = 6;

struct Interface {
    uint16_t linkType;
    uint8_t timeResolution;
    uint64_t timeOffsetSeconds;
};

uint64_t u64(ByteReader& reader, ByteOrder order) {
    const uint64_t first = reader.u32();
    const uint64_t second = reader.u32();
    return order == ByteOrder::LittleEndian ? second << 32U | first : first << 32U | second;
}

/// What a time in an interface's units is in nanoseconds. Units that nobody has make nonsense, not
/// an error: no more than the time of a record depends on them.
uint64_t nanoseconds(uint64_t time, const Interface& interface) {
    const unsigned exponent = interface.timeResolution & 0x7FU;
    uint64_t result = time;
    if ((interface.timeResolution & 0x80U) != 0) {
        const unsigned shift = std::min(exponent, 32U); // finer ones do not fit the arithmetic
        const uint64_t fraction = time & ((uint64_t{1} << shift) - 1);
        result =
            (time >> shift) * nanosecondsPerSecond + (fraction * nanosecondsPerSecond >> shift);
    } else {
        for (unsigned digit = std::min(exponent, 9U); digit < 9; ++digit) {
            result *= 10;
        }
        for (unsigned digit = 9; digit < std::min(exponent, 28U); ++digit) {
            result /= 10;
        }
    }
    return result + interface.timeOffsetSeconds * nanosecondsPerSecond;
}

class CaptureReader {
public:
    explicit CaptureReader(const Bytes& file) : bytes(file) {}

    Capture read() {
        ByteReader first(bytes);
        if (bytes.size() < minBlockSize || first.u32() != BlockType::section) {
            throw InvalidCapture("this is not a pcapng capture");
        }
        while (place < bytes.size() && readBlock()) {
        }
        return std::move(capture);
    }

private:
    [[noreturn]] void fail(const std::string& what) const {
        throw InvalidCapture(what + " in the block at byte " + std::to_string(place));
    }

    [[nodiscard]] ByteReader readerAt(size_t offset, size_t size) const {
        return {bytes.data() + offset, size, order};
    }

    /// Returns false when the file ends within the block.
    bool readBlock() {
        const size_t left = bytes.size() - place;
        if (left < minBlockSize) {
            capture.isCut = true;
            return false;
        }
        ByteReader head = readerAt(place, left);
        const uint32_t type = head.u32();
        if (type == BlockType::section) { // the same in both byte orders
            findByteOrder();
        }
        head = readerAt(place + 4, left - 4);
        const uint32_t total = head.u32();
        if (total < minBlockSize || total > maxBlockSize || total % 4 != 0) {
            fail("impossible length " + std::to_string(total));
        }
        if (total > left) {
            capture.isCut = true;
            return false;
        }
        if (readerAt(place + total - 4, 4).u32() != total) {
            fail("two different lengths");
        }
        const ByteReader body = readerAt(place + 8, total - minBlockSize);
        if (type == BlockType::section) {
            interfaces.clear();
        } else if (type == BlockType::interface) {
            readInterface(body);
        } else if (type == BlockType::packet) {
            readPacket(body);
        }
        place += total;
        return true;
    }

    void findByteOrder() {
        for (const ByteOrder candidate : {ByteOrder::LittleEndian, ByteOrder::BigEndian}) {
            order = candidate;
            if (readerAt(place + 8, 4).u32() == byteOrderMagic) {
                return;
            }
        }
        fail("no byte order");
    }

    void readInterface(ByteReader body) {
        Interface added{body.u16(), microseconds, 0};
        body.skip(2 + 4);
        while (body.remaining() > 0) {
            const uint16_t code = body.u16();
            const uint16_t size = body.u16();
            if (code == OptionCode::end) {
                break;
            }
            const Bytes value = body.bytes(size);
            body.skip((4 - size % 4U) % 4U);
            if (body.overran()) {
                fail("an option that is too long");
            }
            ByteReader reader(value, order);
            if (code == OptionCode::timeResolution) {
                added.timeResolution = reader.u8();
            } else if (code == OptionCode::timeOffset) {
                added.timeOffsetSeconds = u64(reader, order);
            }
        }
        if (body.overran()) {
            fail("too few bytes");
        }
        interfaces.push_back(added);
    }

    void readPacket(ByteReader body) {
        const uint32_t number = body.u32();
        const uint64_t high = body.u32();
        const uint64_t time = high << 32U | body.u32();
        const uint32_t captured = body.u32();
        body.skip(4);
        if (body.overran() || captured > body.remaining()) {
            fail("too few bytes");
        }
        if (number >= interfaces.size()) {
            fail("no interface " + std::to_string(number));
        }
        const Interface& interface = interfaces[number];
        const size_t header = interface.linkType == LinkType::usbmonPadded ? paddedHeaderSize
                              : interface.linkType == LinkType::usbmon     ? headerSize
                                                                           : 0;
        if (header == 0) {
            return;
        }
        if (captured < header) {
            fail("a USB record of " + std::to_string(captured) + " bytes");
        }
        const Bytes packet = body.bytes(captured);
        capture.records.push_back(recordOf(packet, header));
        capture.records.back().record.time = nanoseconds(time, interface);
    }

    [[nodiscard]] CapturedRecord recordOf(const Bytes& packet, size_t header) const {
        ByteReader reader(packet, order);
        CapturedRecord captured;
        UsbRecord& record = captured.record;
        record.id = u64(reader, order);
        record.event = static_cast<UsbEvent>(reader.u8());
        record.transfer = static_cast<UsbTransfer>(reader.u8());
        record.endpoint = reader.u8();
        record.device = reader.u8();
        record.bus = reader.u16();
        record.hasSetup = reader.u8() == 0;
        const bool hasData = reader.u8() == 0;
        reader.skip(8 + 4); // the block's time is the finer one
        record.status = static_cast<int32_t>(reader.u32());
        record.length = reader.u32();
        reader.skip(4);
        for (uint8_t& byte : record.setup) {
            byte = reader.u8();
        }
        reader.skip(header - headerSize);
        if (hasData) {
            captured.data = reader.rest();
        }
        return captured;
    }

    const Bytes& bytes;
    size_t place = 0;
    ByteOrder order = ByteOrder::LittleEndian;
    std::vector<Interface> interfaces;
    Capture capture;
};

} // namespace

Capture readCapture(const Bytes& file) {
    return CaptureReader(file).read();
}

} // namespace capture
