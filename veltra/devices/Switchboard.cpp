// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "devices/Switchboard.hpp"

#include "bytes/ByteWriter.hpp"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

namespace devices {

Switchboard::Said Switchboard::answer(const uint8_t* request, size_t size) {
    ByteReader reader(request, size);
    const auto kind = static_cast<RequestKind>(reader.u8());
    Id id{};
    const Bytes idBytes = reader.bytes(idSize);
    std::copy(idBytes.begin(), idBytes.end(), id.begin());
    const Answer result = reader.overran() ? refusal(EINVAL) : answer(kind, id, reader);
    Said said;
    said.bytes = virtual_adapter::ByteWriter()
                     .u32(static_cast<uint32_t>(answerHead - sizeField + result.data.size()))
                     .u32(static_cast<uint32_t>(result.result))
                     .bytes(result.data)
                     .take();
    if (kind == RequestKind::Open && result.result == 0) {
        said.opened = id;
    }
    return said;
}

Answer Switchboard::answer(RequestKind kind, const Id& id, ByteReader& content) {
    if (kind == RequestKind::Open) {
        return open(id, content);
    }
    if (kind == RequestKind::Find) {
        return find(content) != nullptr ? Answer() : refusal(ENOENT);
    }
    const auto found = opened.find(id);
    if (found == opened.end()) {
        return refusal(ENODEV);
    }
    switch (kind) {
    case RequestKind::Control: {
        const uint32_t request = content.u32();
        return found->second.device->control(request, content);
    }
    case RequestKind::Read:
        return read(found->second, content);
    case RequestKind::Write:
        return write(found->second, content);
    default:
        return refusal(EINVAL);
    }
}

Answer Switchboard::open(const Id& id, ByteReader& content) {
    const uint8_t access = content.u8();
    Device* const device = find(content);
    if (device == nullptr) {
        return refusal(ENOENT);
    }
    if (opened.count(id) > 0) {
        return refusal(EBUSY);
    }
    opened[id] = {device->open(), access};
    return {};
}

Answer Switchboard::read(Opened& device, ByteReader& content) {
    const uint32_t count = content.u32();
    if (!content.consumedExactly()) {
        return refusal(EINVAL);
    }
    return device.access == O_WRONLY ? refusal(EBADF) : device.device->read(count);
}

Answer Switchboard::write(Opened& device, ByteReader& content) {
    return device.access == O_RDONLY ? refusal(EBADF) : device.device->write(content.rest());
}

Device* Switchboard::find(ByteReader& name) {
    const Bytes text = name.rest();
    const auto found = devices.find({text.begin(), text.end()});
    return found != devices.end() ? found->second.get() : nullptr;
}

} // namespace devices
