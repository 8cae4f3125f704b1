// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "devices/SpiDevice.hpp"

#include "devices/messages.hpp"

#include <linux/spi/spidev.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace devices {

namespace {

constexpr uint32_t understoodModes = SPI_CPHA | SPI_CPOL | SPI_CS_HIGH | SPI_LSB_FIRST;

/// As the drivers of Linux do, a faster clock than there is becomes the fastest.
constexpr uint32_t maxClock = 50'000'000;
constexpr uint32_t minClock = 10'000;

uint32_t modeOf(const SpiSetting& setting) {
    return static_cast<uint32_t>(setting.mode) | (setting.isActiveHigh ? SPI_CS_HIGH : 0U) |
           (setting.isLsbFirst ? SPI_LSB_FIRST : 0U);
}

bool setMode(SpiSetting& setting, uint32_t mode) {
    setting.mode = static_cast<int>(mode & (SPI_CPHA | SPI_CPOL));
    setting.isActiveHigh = (mode & SPI_CS_HIGH) != 0;
    setting.isLsbFirst = (mode & SPI_LSB_FIRST) != 0;
    return (mode & ~understoodModes) == 0;
}

bool setBits(SpiSetting& setting, uint32_t bits) {
    setting.bits = bits == 0 ? 8 : static_cast<int>(bits);
    return bits == 0 || bits == 8 || bits == 16;
}

bool setClock(SpiSetting& setting, uint32_t clock) {
    setting.clock = std::min(clock, maxClock);
    return clock >= minClock;
}

/// Words are in the order of the processor in memory, and low byte first for the adapter.
Bytes inAdaptersOrder(Bytes data, const SpiSetting& setting) {
    if (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__ && setting.bits == 16) {
        for (size_t i = 0; i + 1 < data.size(); i += 2) {
            std::swap(data[i], data[i + 1]);
        }
    }
    return data;
}

/// Bytes that a program wants of those that come back.
struct Wanted {
    size_t offset;
    size_t count;
};

/// One chip-select assertion.
struct Assertion {
    SpiSetting setting;
    Bytes sent{};
    std::vector<Wanted> wanted{};
    unsigned pause = 0;
};

/// The transfers of a message, and the assertions that they become.
class Message {
public:
    /// Returns an error number, or 0.
    int read(ByteReader& arguments, uint32_t transfers, const SpiSetting& setting) {
        bool isAsserted = false;
        for (uint32_t i = 0; i < transfers; ++i) {
            const bool isLast = i + 1 == transfers;
            if (const int error = add(arguments, setting, isAsserted, isLast)) {
                return error;
            }
        }
        return arguments.consumedExactly() ? 0 : EINVAL;
    }

    std::vector<Assertion> assertions;
    uint64_t length = 0;

private:
    int add(ByteReader& arguments, const SpiSetting& usual, bool& isAsserted, bool isLast) {
        const uint32_t count = arguments.u32();
        const uint32_t clock = arguments.u32();
        const uint16_t delay = arguments.u16();
        const uint8_t bits = arguments.u8();
        const bool changesChipSelect = arguments.u8() != 0;
        const uint8_t wiresOut = arguments.u8();
        const uint8_t wiresIn = arguments.u8();
        const uint8_t delayOfWord = arguments.u8();
        const unsigned directions = arguments.u8();
        length += count;
        if (length > maxSpiBytes) {
            return EMSGSIZE;
        }
        const bool releases = changesChipSelect || isLast;
        SpiSetting setting = usual;
        const bool understood =
            (bits == 0 || setBits(setting, bits)) && (clock == 0 || setClock(setting, clock)) &&
            wiresOut <= 1 && wiresIn <= 1 && delayOfWord == 0 &&
            // Inside an assertion the adapter cannot wait.
            (delay == 0 || releases) && count % static_cast<unsigned>(setting.bits / 8) == 0;
        if (!understood) {
            return EINVAL;
        }
        if (!isAsserted) {
            assertions.push_back({setting});
        }
        Assertion& assertion = assertions.back();
        if (assertion.setting.bits != setting.bits) {
            return EINVAL;
        }
        // A transfer's clock is the fastest that it allows.
        assertion.setting.clock = std::min(assertion.setting.clock, setting.clock);
        if ((directions & spiReceives) != 0) {
            assertion.wanted.push_back({assertion.sent.size(), count});
        }
        const Bytes data = (directions & spiSends) != 0 ? arguments.bytes(count) : Bytes(count);
        assertion.sent.insert(assertion.sent.end(), data.begin(), data.end());
        assertion.pause = delay;
        isAsserted = !releases;
        return 0;
    }
};

} // namespace

class OpenedSpiDevice : public OpenedDevice {
public:
    explicit OpenedSpiDevice(SpiDevice& itsDevice) : device(itsDevice) { ++device.opened; }

    ~OpenedSpiDevice() override {
        if (--device.opened == 0) {
            device.setting.clock = SpiSetting().clock;
        }
    }

    Answer control(uint32_t request, ByteReader& arguments) override {
        if (_IOC_TYPE(request) == SPI_IOC_MAGIC && _IOC_NR(request) == 0 &&
            _IOC_DIR(request) == _IOC_WRITE) {
            return transfer(arguments, _IOC_SIZE(request));
        }
        const SpiSetting& setting = device.setting;
        switch (request) {
        case SPI_IOC_RD_MODE:
        case SPI_IOC_RD_MODE32:
            return numberAnswer(modeOf(setting));
        case SPI_IOC_RD_LSB_FIRST:
            return numberAnswer(setting.isLsbFirst ? 1 : 0);
        case SPI_IOC_RD_BITS_PER_WORD:
            return numberAnswer(static_cast<uint32_t>(setting.bits));
        case SPI_IOC_RD_MAX_SPEED_HZ:
            return numberAnswer(setting.clock);
        default:
            return set(request, arguments.u32());
        }
    }

    Answer read(uint32_t count) override {
        if (count > maxSpiBytes) {
            return refusal(EMSGSIZE);
        }
        Answer answer{static_cast<int32_t>(count), {}};
        const int error = exchange({device.setting, Bytes(count), {{0, count}}}, answer.data);
        return error != 0 ? refusal(error) : answer;
    }

    Answer write(const Bytes& data) override {
        if (data.size() > maxSpiBytes) {
            return refusal(EMSGSIZE);
        }
        Bytes received;
        const int error = exchange({device.setting, data}, received);
        return error != 0 ? refusal(error) : Answer{static_cast<int32_t>(data.size()), {}};
    }

private:
    Answer set(uint32_t request, uint32_t value) {
        SpiSetting setting = device.setting;
        bool understood = false;
        switch (request) {
        case SPI_IOC_WR_MODE:
        case SPI_IOC_WR_MODE32:
            understood = setMode(setting, value);
            break;
        case SPI_IOC_WR_LSB_FIRST:
            setting.isLsbFirst = value != 0;
            understood = true;
            break;
        case SPI_IOC_WR_BITS_PER_WORD:
            understood = setBits(setting, value);
            break;
        case SPI_IOC_WR_MAX_SPEED_HZ:
            understood = setClock(setting, value);
            break;
        default:
            return refusal(ENOTTY);
        }
        if (!understood) {
            return refusal(EINVAL);
        }
        device.setting = setting;
        return {};
    }

    Answer transfer(ByteReader& arguments, uint32_t size) {
        if (size % sizeof(spi_ioc_transfer) != 0) {
            return refusal(EINVAL);
        }
        Message message;
        const auto transfers = static_cast<uint32_t>(size / sizeof(spi_ioc_transfer));
        int error = message.read(arguments, transfers, device.setting);
        Answer answer;
        for (size_t i = 0; i < message.assertions.size() && error == 0; ++i) {
            error = exchange(message.assertions[i], answer.data);
        }
        answer.result = static_cast<int32_t>(message.length);
        return error != 0 ? refusal(error) : answer;
    }

    /// Appends what is wanted of what is received.
    int exchange(const Assertion& assertion, Bytes& received) {
        const SpiSetting& setting = assertion.setting;
        const Bytes& sent = assertion.sent;
        if (sent.size() % static_cast<unsigned>(setting.bits / 8) != 0) {
            return EINVAL;
        }
        const size_t count = assertion.wanted.empty()
                                 ? 0
                                 : assertion.wanted.back().offset + assertion.wanted.back().count;
        Bytes data;
        const int error = sent.empty()
                              ? 0
                              : device.buses.spiTransfer(setting, inAdaptersOrder(sent, setting),
                                                         static_cast<uint16_t>(count), data);
        if (error != 0) {
            return error;
        }
        data = inAdaptersOrder(std::move(data), setting);
        data.resize(count);
        for (const Wanted& piece : assertion.wanted) {
            const auto first = data.begin() + static_cast<Bytes::difference_type>(piece.offset);
            received.insert(received.end(), first,
                            first + static_cast<Bytes::difference_type>(piece.count));
        }
        if (assertion.pause != 0) {
            device.buses.pause(assertion.pause);
        }
        return 0;
    }

    SpiDevice& device;
};

std::unique_ptr<OpenedDevice> SpiDevice::open() {
    return std::make_unique<OpenedSpiDevice>(*this);
}

} // namespace devices
