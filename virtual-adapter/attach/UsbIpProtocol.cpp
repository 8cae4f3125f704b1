#include "attach/UsbIpProtocol.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>

namespace virtual_adapter {

namespace {

constexpr uint16_t version = 0x0111;
constexpr uint16_t listRequestCode = 0x8005;
constexpr uint16_t importRequestCode = 0x8003;
constexpr uint16_t listReplyCode = 0x0005;
constexpr uint16_t importReplyCode = 0x0003;
constexpr size_t requestHeaderSize = 8;
constexpr size_t pathSize = 256;
constexpr size_t busIdSize = 32;

constexpr uint32_t submitCode = 1;
constexpr uint32_t unlinkCode = 2;
constexpr uint32_t returnSubmitCode = 3;
constexpr uint32_t returnUnlinkCode = 4;
constexpr size_t commandHeaderSize = 48;
constexpr uint32_t hostToDevice = 0;
constexpr uint32_t deviceToHost = 1;
constexpr uint32_t highestEndpoint = 15;
/// Says that a transfer is not isochronous, where 0 does not.
constexpr uint32_t noPackets = 0xFFFFFFFF;

/// Builds a message field by field.
class Message {
public:
    Message& u8(uint8_t value) {
        bytes.push_back(value);
        return *this;
    }

    Message& u16(uint16_t value) {
        return u8(static_cast<uint8_t>(value >> 8U)).u8(static_cast<uint8_t>(value & 0xFFU));
    }

    Message& u32(uint32_t value) {
        return u16(static_cast<uint16_t>(value >> 16U)).u16(static_cast<uint16_t>(value & 0xFFFFU));
    }

    Message& text(const std::string& value, size_t size) {
        const size_t end = bytes.size() + size;
        bytes.insert(bytes.end(), value.begin(), value.end());
        bytes.resize(end);
        return *this;
    }

    Message& zeros(size_t count) { return text({}, count); }

    Message& data(const Bytes& value) {
        bytes.insert(bytes.end(), value.begin(), value.end());
        return *this;
    }

    Bytes take() { return std::move(bytes); }

private:
    Bytes bytes;
};

Message& describe(Message& message, const UsbIpDevice& device) {
    constexpr uint8_t classOfInterface = 0;
    constexpr uint8_t configurations = 1;
    constexpr uint8_t interfaces = 1;
    return message.text("/sys/devices/veltra-virtual-adapter/" + device.busId, pathSize)
        .text(device.busId, busIdSize)
        .u32(device.busNumber)
        .u32(device.deviceNumber)
        .u32(usbIpSpeed(device.identity))
        .u16(device.identity.vendorId)
        .u16(device.identity.productId)
        .u16(device.identity.deviceRelease)
        .u8(classOfInterface)
        .u8(0)
        .u8(0)
        .u8(onlyConfiguration)
        .u8(configurations)
        .u8(interfaces);
}

/// The kernel's error numbers, negated, are the protocol's status values.
uint32_t statusOf(UsbStatus status) {
    int32_t value = 0;
    switch (status) {
    case UsbStatus::Completed:
        break;
    case UsbStatus::Stalled:
        value = -EPIPE;
        break;
    case UsbStatus::Overflowed:
        value = -EOVERFLOW;
        break;
    case UsbStatus::Unplugged:
        value = -ESHUTDOWN;
        break;
    }
    return static_cast<uint32_t>(value);
}

} // namespace

void UsbIpReader::append(const uint8_t* data, size_t size) {
    if (!malformed) {
        received.insert(received.end(), data, data + size);
    }
}

std::optional<UsbIpRequest> UsbIpReader::nextRequest() {
    if (malformed || received.size() < requestHeaderSize) {
        return std::nullopt;
    }
    const uint16_t code = u16(2);
    if (u16(0) != version || (code != listRequestCode && code != importRequestCode)) {
        return refuse();
    }
    if (code == listRequestCode) {
        consume(requestHeaderSize);
        return UsbIpListRequest{};
    }
    if (received.size() < requestHeaderSize + busIdSize) {
        return std::nullopt;
    }
    const auto begin = std::next(received.begin(), requestHeaderSize);
    const auto end = std::find(begin, std::next(begin, busIdSize), uint8_t{0});
    UsbIpImportRequest request{std::string(begin, end)};
    consume(requestHeaderSize + busIdSize);
    return request;
}

std::optional<UsbIpCommand> UsbIpReader::nextCommand() {
    if (malformed || received.size() < commandHeaderSize) {
        return std::nullopt;
    }
    switch (u32(0)) {
    case submitCode:
        return nextSubmit();
    case unlinkCode: {
        const UsbIpUnlink unlink{u32(4), u32(20)};
        consume(commandHeaderSize);
        return unlink;
    }
    default:
        return refuse();
    }
}

std::optional<UsbIpSubmit> UsbIpReader::nextSubmit() {
    const uint32_t sequence = u32(4);
    const uint32_t direction = u32(12);
    const uint32_t endpoint = u32(16);
    const uint32_t length = u32(24);
    const uint32_t packets = u32(32);
    if (direction > deviceToHost || endpoint > highestEndpoint ||
        (packets != 0 && packets != noPackets)) {
        return refuse();
    }
    const bool output = direction == hostToDevice;
    if (output && length > longestUsbIpOutput) {
        return refuse();
    }
    const size_t size = commandHeaderSize + (output ? length : 0);
    if (received.size() < size) {
        return std::nullopt;
    }
    std::array<uint8_t, 8> setup{};
    std::copy_n(std::next(received.begin(), commandHeaderSize - setup.size()), setup.size(),
                setup.begin());
    const auto data = std::next(received.begin(), commandHeaderSize);
    UsbIpSubmit submit{
        sequence,
        {sequence, static_cast<uint8_t>(endpoint | direction << 7U), SetupPacket::fromBytes(setup),
         output ? 0 : size_t{length},
         Bytes(data, std::next(received.begin(), static_cast<std::ptrdiff_t>(size)))}};
    consume(size);
    return submit;
}

uint16_t UsbIpReader::u16(size_t offset) const {
    return static_cast<uint16_t>(received.at(offset) << 8U | received.at(offset + 1));
}

uint32_t UsbIpReader::u32(size_t offset) const {
    return static_cast<uint32_t>(u16(offset)) << 16U | u16(offset + 2);
}

void UsbIpReader::consume(size_t size) {
    received.erase(received.begin(),
                   std::next(received.begin(), static_cast<std::ptrdiff_t>(size)));
}

std::nullopt_t UsbIpReader::refuse() {
    malformed = true;
    received.clear();
    return std::nullopt;
}

uint32_t usbIpSpeed(const UsbIdentity& identity) {
    constexpr uint32_t fullSpeed = 2;
    constexpr uint32_t highSpeed = 3;
    return speedOf(identity) == UsbSpeed::Full ? fullSpeed : highSpeed;
}

Bytes usbIpListReply(const UsbIpDevice* device) {
    Message message;
    message.u16(version).u16(listReplyCode).u32(0).u32(device == nullptr ? 0 : 1);
    if (device != nullptr) {
        describe(message, *device).u8(hidInterfaceClass).u8(0).u8(0).u8(0);
    }
    return message.take();
}

Bytes usbIpImportReply(const UsbIpDevice& device) {
    Message message;
    message.u16(version).u16(importReplyCode).u32(0);
    return describe(message, device).take();
}

Bytes usbIpImportRefusal(UsbIpRefusal refusal) {
    return Message().u16(version).u16(importReplyCode).u32(static_cast<uint32_t>(refusal)).take();
}

Bytes usbIpReturnSubmit(uint32_t sequence, const UsbResult& result) {
    return Message()
        .u32(returnSubmitCode)
        .u32(sequence)
        .zeros(12) // device, direction and endpoint are the command's
        .u32(statusOf(result.status))
        .u32(static_cast<uint32_t>(result.actualLength))
        .zeros(20) // nothing isochronous, and padding
        .data(result.data)
        .take();
}

Bytes usbIpReturnUnlink(uint32_t sequence, bool wasPending) {
    return Message()
        .u32(returnUnlinkCode)
        .u32(sequence)
        .zeros(12)
        .u32(static_cast<uint32_t>(wasPending ? -ECONNRESET : 0))
        .zeros(24)
        .take();
}

} // namespace virtual_adapter
