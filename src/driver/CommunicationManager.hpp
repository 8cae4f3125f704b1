// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "driver/UsbTransferProtocol.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

class VeltraDriver;

/// A link for whole messages: splits requests into reports, joins reports into messages.
class CommunicationManager {
public:
    [[gnu::cold]] CommunicationManager();
    ~CommunicationManager();
    CommunicationManager(const CommunicationManager&) = delete;
    CommunicationManager& operator=(const CommunicationManager&) = delete;

    /// Opens the adapter with this HID path and serial number; an empty string matches any.
    [[gnu::cold]] bool connect(const std::string& path, const std::string& serialNumber);

    void disconnect();

    /// Writes @p request report by report; only after a successful connect. A failed write is not
    /// reported: the request simply gets no response.
    void sendRequest(const Message& request) { writeReports(request, true); }

    /// The same, up to the first report that cannot be written. Returns whether all were.
    bool writeRequest(const Message& request) { return writeReports(request, false); }

    /// The longest message that one report holds; only after a successful connect.
    [[nodiscard]] size_t maxSizeInOneReport() const { return protocol->getPacketPayloadLength(); }

    /// Whether a read has failed since the last connect that opened the link.
    [[nodiscard]] bool hasReadError() const;

    /// Installs the receiver of whole messages. It runs on the polling thread, and its argument is
    /// valid only during the call.
    void assignCallback(std::function<void(const std::vector<uint8_t>&)> callback);

    /// Installs who is told of each read that fails, on the polling thread; only while closed.
    void assignReadErrorCallback(std::function<void()> callback);

    /// Takes one report; runs on the polling thread.
    void onDriverResponseCallback(const std::vector<uint8_t>& report);

private:
    /// Returns whether all reports could be written; @p goesOn says what follows one that could
    /// not.
    bool writeReports(const Message& request, bool goesOn);

    std::vector<uint8_t> receivedMessage;
    // Guards `protocol`: the polling thread runs before connect has made the framing object. The
    // driver below, destroyed first, still uses it.
    std::mutex protocolMutex;
    // Held in place, as making it must not fail behind a link that is open already.
    std::optional<UsbTransferProtocol> protocol;
    std::unique_ptr<VeltraDriver> driver;
    std::function<void(const std::vector<uint8_t>&)> responseCallback;
};
