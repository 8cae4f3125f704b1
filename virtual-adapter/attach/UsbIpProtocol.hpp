#pragma once

#include "device/UsbDevice.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

// The messages of USB/IP as the Linux kernel documents them (Documentation/usb/usbip_protocol).
// Every field is big-endian, but for the setup packet inside a submit command.

namespace virtual_adapter {

constexpr uint16_t usbIpPort = 3240;

/// Tells a host which devices there are.
struct UsbIpListRequest {};

/// Asks for a device; commands follow on the same connection.
struct UsbIpImportRequest {
    std::string busId;
};

using UsbIpRequest = std::variant<UsbIpListRequest, UsbIpImportRequest>;

struct UsbIpSubmit {
    uint32_t sequence = 0;
    UsbTransfer transfer;
};

struct UsbIpUnlink {
    uint32_t sequence = 0;
    /// The sequence number of the command to take back.
    uint32_t unlinked = 0;
};

using UsbIpCommand = std::variant<UsbIpSubmit, UsbIpUnlink>;

/// What a host may send in one transfer. No report comes near it; it keeps a host from taking the
/// server's memory.
constexpr size_t longestUsbIpOutput = size_t{1} << 16U;

/// Cuts a byte stream into messages. After the first malformed one there are no more.
class UsbIpReader {
public:
    void append(const uint8_t* data, size_t size);

    /// The next whole request, of a connection that has not imported a device.
    std::optional<UsbIpRequest> nextRequest();

    /// The next whole command, of a connection that has.
    std::optional<UsbIpCommand> nextCommand();

    [[nodiscard]] bool isMalformed() const { return malformed; }

private:
    [[nodiscard]] uint32_t u32(size_t offset) const;
    [[nodiscard]] uint16_t u16(size_t offset) const;
    std::optional<UsbIpSubmit> nextSubmit();
    void consume(size_t size);
    std::nullopt_t refuse();

    Bytes received;
    bool malformed = false;
};

/// The device as the replies describe it.
struct UsbIpDevice {
    std::string busId;
    uint32_t busNumber;
    uint32_t deviceNumber;
    UsbIdentity identity;
};

/// The speed as the protocol and the kernel count it.
uint32_t usbIpSpeed(const UsbIdentity& identity);

/// Lists @p device, or nothing when it is null.
Bytes usbIpListReply(const UsbIpDevice* device);

Bytes usbIpImportReply(const UsbIpDevice& device);

enum class UsbIpRefusal : uint32_t { DeviceBusy = 2, NoSuchDevice = 4 };

Bytes usbIpImportRefusal(UsbIpRefusal refusal);

Bytes usbIpReturnSubmit(uint32_t sequence, const UsbResult& result);

/// @p wasPending tells whether the command was taken back before it ended.
Bytes usbIpReturnUnlink(uint32_t sequence, bool wasPending);

} // namespace virtual_adapter
