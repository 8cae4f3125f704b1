// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/CaptureRecorder.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <hidapi.h>
#include <iterator>
#include <unistd.h>

using capture::Blocks;
using capture::directionIn;
using capture::UsbEvent;
using capture::UsbRecord;
using capture::UsbTransfer;

namespace preload {

namespace {

constexpr uint8_t interruptIn = 0x81;
constexpr uint8_t interruptOut = 0x01;

constexpr uint8_t deviceDescriptor = 1;
constexpr uint8_t stringDescriptor = 3;
constexpr uint16_t usEnglish = 0x0409;
/// The longest string descriptor of whole characters.
constexpr size_t maxDescriptor = 254;

// Errors that hidapi does not tell apart; the kernel says the like of a device that has gone and
// of a transfer that was taken back.
constexpr int32_t writeFailed = -EIO;
constexpr int32_t deviceGone = -ESHUTDOWN;
constexpr int32_t takenBack = -ENOENT;

/// The recorder that forks of this process are told to; there is one.
CaptureRecorder* forked = nullptr; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

uint64_t now() {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    return static_cast<uint64_t>(time.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(time.tv_nsec);
}

const char* fileName() {
    const char* const name = std::getenv("VELTRA_CAPTURE");
    return name != nullptr && *name != '\0' ? name : nullptr;
}

void complain(const char* what, const char* why, const char* rest) {
    char line[512];
    const int size =
        std::snprintf(line, sizeof line, "veltra capture: %s: %s; %s\n", what, why, rest);
    if (size > 0) {
        // With nowhere to complain there is nothing to be done.
        (void)!write(STDERR_FILENO, line, std::min(static_cast<size_t>(size), sizeof line - 1));
    }
}

UsbRecord recordOf(uint64_t transfer, UsbEvent event, uint8_t endpoint, uint16_t bus,
                   uint8_t device) {
    UsbRecord record;
    record.id = transfer;
    record.event = event;
    record.endpoint = endpoint;
    record.bus = bus;
    record.device = device;
    record.time = now();
    return record;
}

/// What is sent of a report: the identifier 0 of unnumbered reports does not go on the wire.
size_t skippedBytes(const uint8_t* data, size_t length) {
    return length > 0 && data[0] == 0 ? 1 : 0;
}

/// The characters as UTF-16 behind a descriptor's two first bytes. Returns the size.
size_t encodeText(const wchar_t* text, uint8_t (&content)[maxDescriptor]) {
    size_t size = 2;
    const auto unit = [&](uint32_t value) {
        content[size++] = static_cast<uint8_t>(value & 0xFFU);
        content[size++] = static_cast<uint8_t>(value >> 8U & 0xFFU);
    };
    for (; *text != L'\0'; ++text) {
        const auto character = static_cast<uint32_t>(*text);
        if (size + (character > 0xFFFF ? 4 : 2) > maxDescriptor) {
            break;
        }
        if (character > 0xFFFF) {
            unit(0xD800 + ((character - 0x10000) >> 10U & 0x3FFU));
            unit(0xDC00 + (character & 0x3FFU));
        } else {
            unit(character);
        }
    }
    content[0] = static_cast<uint8_t>(size);
    content[1] = stringDescriptor;
    return size;
}

} // namespace

void CaptureRecorder::listed(const hid_device_info& device) {
    if (device.path == nullptr || fileName() == nullptr) {
        return;
    }
    lock();
    auto* identity = const_cast<Identity*>(identityOf(device.path));
    if (identity == nullptr) {
        identity = &identities[nextIdentity++ % maxAdapters];
    }
    (void)std::snprintf(identity->path, sizeof identity->path, "%s", device.path);
    identity->vendorId = device.vendor_id;
    identity->productId = device.product_id;
    identity->release = device.release_number;
    const wchar_t* const texts[] = {device.manufacturer_string, device.product_string,
                                    device.serial_number};
    for (size_t i = 0; i < std::size(texts); ++i) {
        // What std::wcsncpy does not copy it fills with zeros; the last one is never written.
        std::wcsncpy(identity->texts[i], texts[i] != nullptr ? texts[i] : L"", maxText);
    }
    unlock();
}

const CaptureRecorder::Identity* CaptureRecorder::identityOf(const char* path) const {
    const auto* const found = std::find_if(
        std::begin(identities), std::end(identities),
        [path](const Identity& identity) { return std::strcmp(identity.path, path) == 0; });
    return found != std::end(identities) ? found : nullptr;
}

void CaptureRecorder::start() {
    const char* const name = fileName();
    if (name == nullptr) {
        return;
    }
    if (forked == nullptr) {
        forked = this;
        pthread_atfork([] { forked->lock(); }, [] { forked->unlock(); },
                       [] { forked->startAnewAfterFork(); });
    }
    const int error = file.open(name);
    if (error != 0) {
        complain(name, strerrordesc_np(error), "the program goes on without a capture");
        state = State::Ended;
        return;
    }
    state = State::Recording;
}

void CaptureRecorder::startAnewAfterFork() {
    mutex = PTHREAD_MUTEX_INITIALIZER;
    hasSection = false;
    // What the parent has opened stays the parent's.
    for (Adapter& adapter : adapters) {
        adapter.handle = nullptr;
    }
}

uint8_t CaptureRecorder::freeDevice(const char* path) const {
    // Two processes that write one file hardly meet at one number, and one adapter keeps its own.
    uint32_t hash = 2166136261U;
    for (; *path != '\0'; ++path) {
        hash = (hash ^ static_cast<uint8_t>(*path)) * 16777619U;
    }
    auto device = static_cast<uint8_t>(hash % 127 + 1);
    const auto isTaken = [&](const Adapter& adapter) {
        return adapter.handle != nullptr && adapter.device == device;
    };
    while (std::any_of(std::begin(adapters), std::end(adapters), isTaken)) {
        device = static_cast<uint8_t>(device % 127 + 1);
    }
    return device;
}

void CaptureRecorder::opened(const void* handle, const char* path) {
    lock();
    if (state == State::NotAsked) {
        start();
    }
    Adapter* const adapter = adapterBehind(nullptr);
    if (state == State::Recording && adapter == nullptr) {
        complain(path, "one adapter too many is open", "it is left out of the capture");
    } else if (state == State::Recording) {
        Blocks blocks;
        if (!hasSection) {
            char program[96];
            (void)std::snprintf(program, sizeof program, "%s, process %d",
                                program_invocation_short_name, getpid());
            blocks.section("veltra capture");
            blocks.usbInterface(program);
            transfers = static_cast<uint64_t>(getpid()) << 32U | 1U;
            hasSection = true;
        }
        adapter->bus = static_cast<uint16_t>(std::strtoul(path, nullptr, 10));
        adapter->device = freeDevice(path);
        adapter->read = 0;
        adapter->isGone = false;
        if (const Identity* const identity = identityOf(path)) {
            describe(blocks, *adapter, *identity);
        }
        adapter->handle = handle;
        append(blocks);
    }
    unlock();
}

CaptureRecorder::Adapter* CaptureRecorder::adapterBehind(const void* handle) {
    auto* const found =
        std::find_if(std::begin(adapters), std::end(adapters),
                     [handle](const Adapter& adapter) { return adapter.handle == handle; });
    return found != std::end(adapters) ? found : nullptr;
}

void CaptureRecorder::describe(Blocks& blocks, const Adapter& adapter, const Identity& identity) {
    const auto low = [](uint16_t value) { return static_cast<uint8_t>(value & 0xFFU); };
    const auto high = [](uint16_t value) { return static_cast<uint8_t>(value >> 8U); };
    const uint8_t device[] = {18,
                              deviceDescriptor,
                              0x00,
                              0x02,
                              0,
                              0,
                              0,
                              64,
                              low(identity.vendorId),
                              high(identity.vendorId),
                              low(identity.productId),
                              high(identity.productId),
                              low(identity.release),
                              high(identity.release),
                              1,
                              2,
                              3,
                              1};
    descriptor(blocks, adapter, deviceDescriptor, 0, device, sizeof device);
    for (size_t i = 0; i < std::size(identity.texts); ++i) {
        uint8_t content[maxDescriptor];
        const size_t size = encodeText(identity.texts[i], content);
        if (size > 2) {
            descriptor(blocks, adapter, stringDescriptor, static_cast<uint8_t>(i + 1), content,
                       size);
        }
    }
}

void CaptureRecorder::descriptor(Blocks& blocks, const Adapter& adapter, uint8_t type,
                                 uint8_t index, const uint8_t* content, size_t size) {
    UsbRecord record =
        recordOf(nextTransfer(), UsbEvent::Submit, directionIn, adapter.bus, adapter.device);
    record.transfer = UsbTransfer::Control;
    record.hasSetup = true;
    const uint16_t language = type == stringDescriptor ? usEnglish : 0;
    record.setup = {directionIn,
                    6,
                    index,
                    type,
                    static_cast<uint8_t>(language & 0xFFU),
                    static_cast<uint8_t>(language >> 8U),
                    static_cast<uint8_t>(size),
                    0};
    record.length = static_cast<uint32_t>(size);
    blocks.record(record, nullptr, 0);
    record.event = UsbEvent::Complete;
    record.hasSetup = false;
    blocks.record(record, content, size);
}

uint64_t CaptureRecorder::writing(const void* handle, const uint8_t* data, size_t length) {
    const Adapter* const adapter =
        state == State::Recording && handle != nullptr ? adapterBehind(handle) : nullptr;
    if (adapter == nullptr || data == nullptr) {
        return 0;
    }
    const uint64_t transfer = nextTransfer();
    const size_t skipped = skippedBytes(data, length);
    UsbRecord record =
        recordOf(transfer, UsbEvent::Submit, interruptOut, adapter->bus, adapter->device);
    record.length = static_cast<uint32_t>(length - skipped);
    Blocks blocks;
    blocks.record(record, data + skipped, length - skipped);
    append(blocks);
    return transfer;
}

void CaptureRecorder::written(const void* handle, uint64_t transfer, int result) {
    const Adapter* const adapter =
        transfer != 0 && state == State::Recording ? adapterBehind(handle) : nullptr;
    if (adapter == nullptr) {
        return;
    }
    UsbRecord record =
        recordOf(transfer, UsbEvent::Complete, interruptOut, adapter->bus, adapter->device);
    record.status = result < 0 ? writeFailed : 0;
    // hidapi counts the report identifier.
    record.length = result > 0 ? static_cast<uint32_t>(result - 1) : 0;
    Blocks blocks;
    blocks.record(record, nullptr, 0);
    append(blocks);
}

uint64_t CaptureRecorder::submitRead(Blocks& blocks, const Adapter& adapter, size_t length) {
    UsbRecord record =
        recordOf(nextTransfer(), UsbEvent::Submit, interruptIn, adapter.bus, adapter.device);
    record.length = static_cast<uint32_t>(length);
    blocks.record(record, nullptr, 0);
    return record.id;
}

void CaptureRecorder::reading(const void* handle, size_t length) {
    Adapter* const adapter =
        state == State::Recording && handle != nullptr ? adapterBehind(handle) : nullptr;
    if (adapter == nullptr || adapter->read != 0 || adapter->isGone) {
        return;
    }
    Blocks blocks;
    adapter->read = submitRead(blocks, *adapter, length);
    append(blocks);
}

void CaptureRecorder::haveRead(const void* handle, const uint8_t* data, size_t length, int result) {
    Adapter* const adapter = result != 0 && state == State::Recording && handle != nullptr
                                 ? adapterBehind(handle)
                                 : nullptr;
    if (adapter == nullptr || data == nullptr || (result < 0 && adapter->isGone)) {
        return;
    }
    Blocks blocks;
    uint64_t transfer = adapter->read.exchange(0);
    if (transfer == 0) {
        transfer = submitRead(blocks, *adapter, length);
    }
    UsbRecord record =
        recordOf(transfer, UsbEvent::Complete, interruptIn, adapter->bus, adapter->device);
    record.status = result < 0 ? deviceGone : 0;
    const size_t size = result > 0 ? static_cast<size_t>(result) : 0;
    record.length = static_cast<uint32_t>(size);
    blocks.record(record, data, size);
    adapter->isGone = result < 0;
    if (result > 0) {
        // hidapi asks for the next report at once.
        adapter->read = submitRead(blocks, *adapter, length);
    }
    append(blocks);
}

void CaptureRecorder::closing(const void* handle) {
    lock();
    Adapter* const adapter = handle != nullptr ? adapterBehind(handle) : nullptr;
    if (adapter != nullptr) {
        const uint64_t transfer = adapter->read.exchange(0);
        if (transfer != 0 && state == State::Recording) {
            UsbRecord record =
                recordOf(transfer, UsbEvent::Complete, interruptIn, adapter->bus, adapter->device);
            record.status = takenBack;
            Blocks blocks;
            blocks.record(record, nullptr, 0);
            append(blocks);
        }
        adapter->handle = nullptr;
    }
    unlock();
}

void CaptureRecorder::append(const Blocks& blocks) {
    const int programsError = errno;
    const int error = file.append(blocks.data(), blocks.size());
    if (error != 0) {
        end(error);
    }
    errno = programsError;
}

void CaptureRecorder::end(int error) {
    // Threads that fail together complain once.
    if (state.exchange(State::Ended) == State::Recording) {
        const char* const name = fileName();
        complain(name != nullptr ? name : "VELTRA_CAPTURE", strerrordesc_np(error),
                 "the capture ends here, the program goes on");
    }
}

} // namespace preload
