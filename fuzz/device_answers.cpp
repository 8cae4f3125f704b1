// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What may come back to a program under `veltra run`, and what it may hand over: any answers to the
// preloaded functions, in any pieces, or none. They touch no memory but what the program has given
// them, and every result is one that the system call could have had. The calls to sockets come
// here: the linker is told so.
#include "Input.hpp"

#include "preload/Conversation.hpp"
#include "preload/device_client.hpp"

#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <linux/spi/spidev.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <vector>

using fuzzing::Bytes;
using fuzzing::Input;
using fuzzing::require;

namespace {

constexpr int opened = 3; // a descriptor that is not looked at
constexpr int maxError = 4095;
const preload::DeviceName i2c{"i2c-0"};

/// What the broker says, and how much of it, or of what is sent, goes through at once.
struct Broker {
    Bytes answer;
    size_t taken = 0;
    size_t piece = 1;
    unsigned read = 0; ///< Of what is sent every byte, so that it is seen to be the program's.
};

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): the calls below have no other
// way to it.
Broker broker;

/// Either any bytes, or the head that a broker would send with its size in front.
Bytes answerOf(Input& input) {
    if (!input.number<bool>()) {
        return input.twoPartBytes();
    }
    const auto result = input.number<uint32_t>();
    const Bytes data = input.twoPartBytes();
    Bytes answer;
    for (const uint32_t number : {static_cast<uint32_t>(4 + data.size()), result}) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            answer.push_back(static_cast<uint8_t>(number >> shift));
        }
    }
    answer.insert(answer.end(), data.begin(), data.end());
    return answer;
}

void requireResult(ssize_t result, ssize_t max) {
    require(result >= -1 && result <= max, "a result is one of the system call's");
    require(result >= 0 || (errno > 0 && errno <= maxError), "what fails has an error number");
}

/// No longer than what is asked for, so that a byte more is seen.
std::unique_ptr<uint8_t[]> memory(size_t size) {
    return std::make_unique<uint8_t[]>(size);
}

void readAndWrite(Input& input) {
    const size_t size = input.number<uint16_t>();
    const auto data = memory(size);
    const auto max = static_cast<ssize_t>(size);
    requireResult(input.number<bool>() ? preload::readDevice(opened, data.get(), size)
                                       : preload::writeDevice(opened, data.get(), size),
                  max);
}

void transferMessages(Input& input) {
    std::vector<i2c_msg> messages(input.byte() % (devices::maxI2cMessages + 2));
    std::vector<std::unique_ptr<uint8_t[]>> data;
    for (i2c_msg& message : messages) {
        message.addr = input.byte();
        message.flags = input.number<uint16_t>();
        message.len = static_cast<uint16_t>(input.number<uint16_t>() % (devices::maxI2cLength + 2));
        data.push_back(memory(message.len));
        message.buf = data.back().get();
    }
    i2c_rdwr_ioctl_data transaction{messages.data(), static_cast<uint32_t>(messages.size())};
    requireResult(preload::controlDevice(opened, I2C_RDWR, &transaction),
                  static_cast<ssize_t>(messages.size()));
}

void transferSmbus(Input& input) {
    i2c_smbus_ioctl_data transaction{};
    transaction.read_write = input.byte();
    transaction.command = input.byte();
    transaction.size = input.byte();
    // As much of the union as a program of that size has.
    const bool isShort = transaction.size <= I2C_SMBUS_PROC_CALL;
    const bool isWord =
        transaction.size == I2C_SMBUS_WORD_DATA || transaction.size == I2C_SMBUS_PROC_CALL;
    const auto data = memory(!isShort ? sizeof(i2c_smbus_data) : isWord ? 2 : 1);
    void* const given = data.get();
    transaction.data = transaction.size == I2C_SMBUS_QUICK || input.number<bool>()
                           ? nullptr
                           : static_cast<i2c_smbus_data*>(given);
    requireResult(preload::controlDevice(opened, I2C_SMBUS, &transaction), INT32_MAX);
}

void transferSpi(Input& input) {
    std::vector<spi_ioc_transfer> transfers(input.byte() % 8);
    std::vector<std::unique_ptr<uint8_t[]>> data;
    for (spi_ioc_transfer& transfer : transfers) {
        const uint8_t directions = input.byte();
        transfer.len = input.number<uint16_t>();
        for (auto* const buffer : {&transfer.tx_buf, &transfer.rx_buf}) {
            data.push_back(memory(transfer.len));
            const bool isGiven = (directions & (buffer == &transfer.tx_buf ? 1U : 2U)) != 0;
            *buffer = isGiven ? reinterpret_cast<uintptr_t>(data.back().get()) : 0;
        }
    }
    const auto size = static_cast<uint32_t>(transfers.size() * sizeof(spi_ioc_transfer));
    const uint32_t request = _IOC(_IOC_WRITE, SPI_IOC_MAGIC, 0, size);
    requireResult(preload::controlDevice(opened, request, transfers.data()), INT32_MAX);
}

void askNumbers(Input& input) {
    constexpr uint32_t requests[] = {SPI_IOC_RD_MODE,          SPI_IOC_WR_MODE,
                                     SPI_IOC_RD_MODE32,        SPI_IOC_WR_MODE32,
                                     SPI_IOC_RD_LSB_FIRST,     SPI_IOC_WR_LSB_FIRST,
                                     SPI_IOC_RD_BITS_PER_WORD, SPI_IOC_WR_BITS_PER_WORD,
                                     SPI_IOC_RD_MAX_SPEED_HZ,  SPI_IOC_WR_MAX_SPEED_HZ};
    const uint32_t request = requests[input.byte() % std::size(requests)];
    const auto number = memory(_IOC_SIZE(request));
    requireResult(preload::controlDevice(opened, request, number.get()), INT32_MAX);
    unsigned long functions = 0;
    requireResult(preload::controlDevice(opened, I2C_FUNCS, &functions), INT32_MAX);
    requireResult(preload::controlDevice(opened, input.number<uint32_t>(), nullptr), INT32_MAX);
}

void openAndFind() {
    preload::isServed(i2c);
    const int descriptor = preload::openDevice(i2c, O_RDWR | O_CLOEXEC);
    requireResult(descriptor, INT32_MAX);
    if (descriptor >= 0) {
        close(descriptor);
    }
}

} // namespace

extern "C" {

// NOLINTBEGIN: the linker's names, in place of the C library's.

int __wrap_connect(int /*socket*/, const sockaddr* /*address*/, socklen_t /*size*/) {
    broker.taken = 0;
    return 0;
}

ssize_t __wrap_sendmsg(int /*socket*/, const msghdr* message, int /*flags*/) {
    size_t sent = 0;
    for (size_t i = 0; i < message->msg_iovlen; ++i) {
        const auto* const bytes = static_cast<const uint8_t*>(message->msg_iov[i].iov_base);
        for (size_t j = 0; j < message->msg_iov[i].iov_len; ++j) {
            broker.read += bytes[j];
        }
        sent += message->msg_iov[i].iov_len;
    }
    // Long requests in few pieces, or a run takes too long.
    return static_cast<ssize_t>(std::min(sent, std::max(broker.piece, sent / 4)));
}

ssize_t __wrap_recv(int /*socket*/, void* data, size_t size, int /*flags*/) {
    const size_t count = std::min({size, broker.piece, broker.answer.size() - broker.taken});
    if (count > 0) {
        std::memcpy(data, broker.answer.data() + broker.taken, count);
        broker.taken += count;
    }
    return static_cast<ssize_t>(count);
}

int __wrap_getsockname(int /*socket*/, sockaddr* address, socklen_t* size) {
    sockaddr_un own{};
    own.sun_family = AF_UNIX;
    const size_t name = sizeof devices::nameOfOpened - 1;
    std::memcpy(own.sun_path + 1, devices::nameOfOpened, name);
    std::memcpy(own.sun_path + 1 + name + devices::idSize, i2c.text, std::strlen(i2c.text));
    std::memcpy(address, &own, std::min<size_t>(*size, sizeof own));
    *size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name + devices::idSize +
                                   std::strlen(i2c.text));
    return 0;
}

int __wrap_getpeername(int /*socket*/, sockaddr* address, socklen_t* size) {
    return __wrap_getsockname(opened, address, size);
}

// NOLINTEND

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    setenv(devices::socketVariable, "/broker", 1);
    Input input(data, size);
    const uint8_t call = input.byte();
    broker.piece = 1U + input.byte();
    broker.answer = answerOf(input);
    errno = 0;
    switch (call % 6) {
    case 0:
        readAndWrite(input);
        break;
    case 1:
        transferMessages(input);
        break;
    case 2:
        transferSmbus(input);
        break;
    case 3:
        transferSpi(input);
        break;
    case 4:
        askNumbers(input);
        break;
    default:
        openAndFind();
        break;
    }
    return 0;
}

} // extern "C"
