// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/device_control.hpp"

#include "bytes/ByteReader.hpp"

#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <linux/spi/spidev.h>

#include <cerrno>
#include <cstring>

namespace preload {

using devices::RequestKind;

namespace {

constexpr size_t requestField = 4;

int fail(int error) {
    errno = error;
    return -1;
}

/// What a request asks for, behind which come fields of its own.
template <size_t Capacity>
Fields<requestField + Capacity> fieldsOf(uint32_t request) {
    Fields<requestField + Capacity> fields;
    fields.u32(request);
    return fields;
}

/// An ioctl whose argument is a number, or points to one that it sets.
int sendNumber(Conversation& conversation, const DeviceId& id, uint32_t request, uint32_t number) {
    auto fields = fieldsOf<4>(request);
    fields.u32(number);
    iovec parts[] = {{}, fields.part()};
    return conversation.ask(RequestKind::Control, id, parts, 2);
}

/// An ioctl that asks for a number.
int askNumber(Conversation& conversation, const DeviceId& id, uint32_t request, uint32_t& number) {
    auto fields = fieldsOf<0>(request);
    iovec parts[] = {{}, fields.part()};
    const int result = conversation.ask(RequestKind::Control, id, parts, 2);
    uint8_t bytes[4] = {};
    if (result < 0 || !conversation.take(bytes, sizeof bytes)) {
        return -1;
    }
    number = virtual_adapter::ByteReader(bytes, sizeof bytes).u32();
    return result;
}

int transferMessages(Conversation& conversation, const DeviceId& id,
                     const i2c_rdwr_ioctl_data* transaction) {
    if (transaction == nullptr) {
        return fail(EFAULT);
    }
    const size_t count = transaction->nmsgs;
    if (transaction->msgs == nullptr || count == 0 || count > devices::maxI2cMessages) {
        return fail(EINVAL);
    }
    constexpr size_t head = 6;
    auto fields = fieldsOf<4 + devices::maxI2cMessages * head>(I2C_RDWR);
    fields.u32(static_cast<uint32_t>(count));
    iovec parts[2 + 2 * devices::maxI2cMessages] = {{}, fields.part()};
    size_t used = 2;
    for (size_t i = 0; i < count; ++i) {
        const i2c_msg& message = transaction->msgs[i];
        if (message.len > devices::maxI2cLength) {
            return fail(EINVAL);
        }
        const size_t before = fields.size();
        fields.u16(message.addr).u16(message.flags).u16(message.len);
        parts[used++] = fields.partFrom(before);
        if ((message.flags & I2C_M_RD) == 0) {
            parts[used++] = {message.buf, message.len};
        }
    }
    const int result = conversation.ask(RequestKind::Control, id, parts, used);
    for (size_t i = 0; result >= 0 && i < count; ++i) {
        const i2c_msg& message = transaction->msgs[i];
        if ((message.flags & I2C_M_RD) != 0 && !conversation.take(message.buf, message.len)) {
            return -1;
        }
    }
    return result > 0 && static_cast<size_t>(result) > count ? fail(EIO) : result;
}

/// How many bytes of i2c_smbus_data a program must have for a size.
size_t smbusDataSize(uint32_t size) {
    switch (size) {
    case I2C_SMBUS_QUICK:
        return 0;
    case I2C_SMBUS_BYTE:
    case I2C_SMBUS_BYTE_DATA:
        return 1;
    case I2C_SMBUS_WORD_DATA:
    case I2C_SMBUS_PROC_CALL:
        return 2;
    default:
        return size <= I2C_SMBUS_I2C_BLOCK_DATA ? devices::maxSmbusData : 0;
    }
}

int transferSmbus(Conversation& conversation, const DeviceId& id,
                  const i2c_smbus_ioctl_data* transaction) {
    if (transaction == nullptr) {
        return fail(EFAULT);
    }
    const size_t size = transaction->data != nullptr ? smbusDataSize(transaction->size) : 0;
    auto fields = fieldsOf<6>(I2C_SMBUS);
    fields.u8(transaction->read_write).u8(transaction->command).u32(transaction->size);
    iovec parts[] = {{}, fields.part(), {transaction->data, size}};
    const int result = conversation.ask(RequestKind::Control, id, parts, 3);
    if (result < 0) {
        return -1;
    }
    if (conversation.remaining() > size) {
        return fail(EIO);
    }
    return conversation.take(transaction->data, conversation.remaining()) ? result : -1;
}

/// The addresses of spidev are numbers of 64 bits also where pointers are shorter.
void* atAddress(uint64_t address) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the program has made it of a pointer.
    return reinterpret_cast<void*>(static_cast<uintptr_t>(address));
}

int transferSpi(Conversation& conversation, const DeviceId& id, uint32_t request,
                const spi_ioc_transfer* transfers) {
    constexpr size_t maxTransfers = (1U << _IOC_SIZEBITS) / sizeof(spi_ioc_transfer);
    constexpr size_t head = 16;
    const size_t count = _IOC_SIZE(request) / sizeof(spi_ioc_transfer);
    if (_IOC_SIZE(request) % sizeof(spi_ioc_transfer) != 0) {
        return fail(EINVAL);
    }
    if (count > 0 && transfers == nullptr) {
        return fail(EFAULT);
    }
    auto fields = fieldsOf<maxTransfers * head>(request);
    iovec parts[2 + 2 * maxTransfers] = {{}, fields.part()};
    size_t used = 2;
    for (size_t i = 0; i < count; ++i) {
        const spi_ioc_transfer& transfer = transfers[i];
        const size_t before = fields.size();
        void* const sent = atAddress(transfer.tx_buf);
        fields.u32(transfer.len).u32(transfer.speed_hz).u16(transfer.delay_usecs);
        fields.u8(transfer.bits_per_word).u8(transfer.cs_change);
        fields.u8(transfer.tx_nbits).u8(transfer.rx_nbits).u8(transfer.word_delay_usecs);
        fields.u8((sent != nullptr ? unsigned{devices::spiSends} : 0U) |
                  (transfer.rx_buf != 0 ? unsigned{devices::spiReceives} : 0U));
        parts[used++] = fields.partFrom(before);
        if (transfer.len > devices::maxSpiBytes) {
            return fail(EMSGSIZE);
        }
        if (sent != nullptr) {
            parts[used++] = {sent, transfer.len};
        }
    }
    const int result = conversation.ask(RequestKind::Control, id, parts, used);
    for (size_t i = 0; result >= 0 && i < count; ++i) {
        void* const received = atAddress(transfers[i].rx_buf);
        if (received != nullptr && !conversation.take(received, transfers[i].len)) {
            return -1;
        }
    }
    return result;
}

/// The numbers of spidev, which are as long as the request says.
int controlNumber(Conversation& conversation, const DeviceId& id, uint32_t request,
                  void* argument) {
    if (argument == nullptr) {
        return fail(EFAULT);
    }
    const size_t size = _IOC_SIZE(request);
    uint32_t number = 0;
    if (_IOC_DIR(request) == _IOC_WRITE) {
        if (size == sizeof number) {
            std::memcpy(&number, argument, size);
        } else {
            number = *static_cast<uint8_t*>(argument);
        }
        return sendNumber(conversation, id, request, number);
    }
    const int result = askNumber(conversation, id, request, number);
    if (result >= 0 && size == sizeof number) {
        std::memcpy(argument, &number, size);
    } else if (result >= 0) {
        *static_cast<uint8_t*>(argument) = static_cast<uint8_t>(number & 0xFFU);
    }
    return result;
}

} // namespace

int control(Conversation& conversation, const DeviceId& id, uint32_t request, void* argument) {
    switch (request) {
    case I2C_SLAVE:
    case I2C_SLAVE_FORCE:
    case I2C_TENBIT:
    case I2C_PEC:
    case I2C_RETRIES:
    case I2C_TIMEOUT: {
        const auto number = reinterpret_cast<uintptr_t>(argument);
        return sendNumber(conversation, id, request,
                          number <= UINT32_MAX ? static_cast<uint32_t>(number) : UINT32_MAX);
    }
    case I2C_FUNCS: {
        uint32_t functions = 0;
        if (argument == nullptr) {
            return fail(EFAULT);
        }
        const int result = askNumber(conversation, id, request, functions);
        if (result >= 0) {
            *static_cast<unsigned long*>(argument) = functions;
        }
        return result;
    }
    case I2C_RDWR:
        return transferMessages(conversation, id, static_cast<i2c_rdwr_ioctl_data*>(argument));
    case I2C_SMBUS:
        return transferSmbus(conversation, id, static_cast<i2c_smbus_ioctl_data*>(argument));
    case SPI_IOC_RD_MODE:
    case SPI_IOC_WR_MODE:
    case SPI_IOC_RD_MODE32:
    case SPI_IOC_WR_MODE32:
    case SPI_IOC_RD_LSB_FIRST:
    case SPI_IOC_WR_LSB_FIRST:
    case SPI_IOC_RD_BITS_PER_WORD:
    case SPI_IOC_WR_BITS_PER_WORD:
    case SPI_IOC_RD_MAX_SPEED_HZ:
    case SPI_IOC_WR_MAX_SPEED_HZ:
        return controlNumber(conversation, id, request, argument);
    default:
        break;
    }
    const bool isMessage = _IOC_TYPE(request) == SPI_IOC_MAGIC && _IOC_NR(request) == 0 &&
                           _IOC_DIR(request) == _IOC_WRITE;
    return isMessage ? transferSpi(conversation, id, request,
                                   static_cast<const spi_ioc_transfer*>(argument))
                     : fail(ENOTTY);
}

} // namespace preload
