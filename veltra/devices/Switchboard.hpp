// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "devices/Device.hpp"
#include "devices/messages.hpp"

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace devices {

using Id = std::array<uint8_t, idSize>;

/// The devices with their names, what of them is open, and what is said to them; without input or
/// output of its own. Whatever comes is answered.
class Switchboard {
public:
    void add(const std::string& name, std::unique_ptr<Device> device) {
        devices[name] = std::move(device);
    }

    struct Said {
        Bytes bytes;              ///< The answer, its size in front.
        std::optional<Id> opened; ///< What has been opened by it.
    };

    /// Takes a request without its size.
    Said answer(const uint8_t* request, size_t size);

    /// The last descriptor of an opened device is gone.
    void close(const Id& id) { opened.erase(id); }

private:
    struct Opened {
        std::unique_ptr<OpenedDevice> device;
        uint8_t access; ///< As O_ACCMODE has it.
    };

    Answer answer(RequestKind kind, const Id& id, ByteReader& content);
    Answer open(const Id& id, ByteReader& content);
    Answer write(Opened& device, ByteReader& content);
    static Answer read(Opened& device, ByteReader& content);
    Device* find(ByteReader& name);

    std::map<std::string, std::unique_ptr<Device>> devices;
    std::map<Id, Opened> opened;
};

} // namespace devices
