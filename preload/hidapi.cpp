// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/Utf16.hpp"
#include "preload/HidAdapter.hpp"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <stdexcept>
#include <utility>

// The project hides its symbols by default; a hidden one would leave the real hidapi in charge.
#pragma GCC visibility push(default)
#include <hidapi.h>
#pragma GCC visibility pop

// The eight functions of hidapi that the library calls, before the real ones. The program's other
// hid_ functions remain hidapi's own.

using virtual_adapter::AdapterSettings;
using virtual_adapter::Bytes;
using virtual_adapter::HidAdapter;
using virtual_adapter::UsbIdentity;

struct hid_device_ {
    HidAdapter adapter;
    /// The one of the process that this one was forked from.
    const hid_device_* inherited;
};

namespace {

/// Bus 1, port 1, configuration 1, interface 0.
const char* const devicePath = "1-1:1.0";

void complain(const std::string& message) {
    std::cerr << "veltra-virtual-adapter: " + message + "\n" << std::flush;
}

AdapterSettings environmentSettings() {
    AdapterSettings settings;
    for (const auto& setting : virtual_adapter::settingTexts()) {
        const char* const text = std::getenv(setting.variable);
        if (text == nullptr) {
            continue;
        }
        try {
            setting.read(settings, text);
        } catch (const std::invalid_argument& error) {
            throw std::invalid_argument(std::string(setting.variable) + "=" + text + ": " +
                                        error.what());
        }
    }
    return settings;
}

hid_device* plugIn(const hid_device* inherited) {
    try {
        return new hid_device{HidAdapter(environmentSettings()), inherited};
    } catch (const std::invalid_argument& error) {
        complain(std::string("no adapter: ") + error.what());
        return nullptr;
    }
}

/// The one device of this process. It is never destroyed: a thread may still be reading while the
/// program's static objects are.
class OneDevice {
public:
    /// Plugs the device in when it is called first. Null when the environment asks for an
    /// impossible one.
    hid_device* get() {
        const std::lock_guard lock(mutex);
        if (!isAskedFor) {
            device = plugIn(inherited);
            isAskedFor = true;
        }
        return device;
    }

    void beforeFork() { mutex.lock(); }
    void afterForkInParent() { mutex.unlock(); }

    /// The device stays the parent's. A thread that the child does not have may hold its lock, so
    /// that it can be neither used nor destroyed here: it is only kept where leak checkers see it.
    void afterForkInChild() {
        if (device != nullptr) {
            inherited = std::exchange(device, nullptr);
        }
        isAskedFor = false;
        mutex.unlock();
    }

private:
    std::mutex mutex;
    bool isAskedFor = false;
    hid_device* device = nullptr;
    const hid_device* inherited = nullptr;
};

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): it has a lock.
OneDevice oneDevice;

/// Fails only when a program that has just been started is out of memory.
[[maybe_unused]] const int forkHandlers =
    pthread_atfork([] { oneDevice.beforeFork(); }, [] { oneDevice.afterForkInParent(); },
                   [] { oneDevice.afterForkInChild(); });

/// The adapter behind a handle. Null for none, and for one of the process that this was forked
/// from.
HidAdapter* adapterBehind(const hid_device* handle) {
    hid_device* const device = oneDevice.get();
    return handle != nullptr && handle == device ? &device->adapter : nullptr;
}

std::wstring wideText(const std::string& utf8) {
    const std::u32string characters = virtual_adapter::charactersOfUtf8(utf8);
    return {characters.begin(), characters.end()};
}

/// An entry of the enumeration with the texts it points to. Programs hold the address of its first
/// member.
struct ListedDevice {
    hid_device_info info{};
    std::string path = devicePath;
    std::wstring serialNumber;
    std::wstring manufacturer;
    std::wstring product;
};

hid_device_info* listDevice(const AdapterSettings& settings, bool withStrings) {
    auto listed = std::make_unique<ListedDevice>();
    hid_device_info& info = listed->info;
    info.path = listed->path.data();
    info.vendor_id = settings.identity.vendorId;
    info.product_id = settings.identity.productId;
    info.release_number = settings.identity.deviceRelease;
    info.bus_type = HID_API_BUS_USB;
    if (withStrings) {
        listed->serialNumber = wideText(settings.serialNumber);
        listed->manufacturer = wideText(settings.identity.manufacturer);
        listed->product = wideText(settings.identity.variant.name);
        info.serial_number = listed->serialNumber.data();
        info.manufacturer_string = listed->manufacturer.data();
        info.product_string = listed->product.data();
    }
    return &listed.release()->info;
}

/// What @p function returns, or @p failure where it throws for want of memory: a program that may
/// be C has no use for an exception. Other than those pass, as they end a cancelled thread.
template <typename Result, typename Function>
Result orFailure(Result failure, Function function) {
    try {
        return function();
    } catch (const std::exception&) {
        return failure;
    }
}

} // namespace

int hid_init() {
    return orFailure(-1, [] { return oneDevice.get() == nullptr ? -1 : 0; });
}

int hid_exit() {
    return orFailure(-1, [] {
        hid_device* const device = oneDevice.get();
        if (device != nullptr && device->adapter.isOpen()) {
            complain("hid_exit while a device is open: the real hidapi aborts here too");
            std::abort();
        }
        return 0;
    });
}

// NOLINTNEXTLINE(readability-identifier-naming): hidapi's names.
hid_device_info* hid_enumerate(unsigned short vendor_id, unsigned short product_id) {
    return orFailure<hid_device_info*>(nullptr, [=]() -> hid_device_info* {
        hid_device* const device = oneDevice.get();
        if (device == nullptr || !device->adapter.isOnBus()) {
            return nullptr;
        }
        const AdapterSettings& settings = device->adapter.adapterSettings();
        const UsbIdentity& identity = settings.identity;
        if ((vendor_id != 0 && vendor_id != identity.vendorId) ||
            (product_id != 0 && product_id != identity.productId)) {
            return nullptr;
        }
        return listDevice(settings, device->adapter.isAccessible());
    });
}

void hid_free_enumeration(hid_device_info* devs) {
    delete reinterpret_cast<ListedDevice*>(devs);
}

hid_device* hid_open_path(const char* path) {
    return orFailure<hid_device*>(nullptr, [=]() -> hid_device* {
        hid_device* const device = oneDevice.get();
        if (device == nullptr || path == nullptr || std::strcmp(path, devicePath) != 0) {
            return nullptr;
        }
        return device->adapter.open() ? device : nullptr;
    });
}

int hid_write(hid_device* device, const unsigned char* data, size_t length) {
    return orFailure(-1, [=] {
        HidAdapter* const adapter = adapterBehind(device);
        if (adapter == nullptr || data == nullptr || length == 0) {
            return -1;
        }
        // The report identifier 0 of unnumbered reports does not go on the wire.
        const size_t skipped = data[0] == 0 ? 1 : 0;
        const bool written = adapter->write(Bytes(data + skipped, data + length));
        return written ? static_cast<int>(length) : -1;
    });
}

int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds) {
    return orFailure(-1, [=] {
        HidAdapter* const adapter = adapterBehind(device);
        if (adapter == nullptr || data == nullptr) {
            return -1;
        }
        return adapter->read(data, length, milliseconds);
    });
}

void hid_close(hid_device* device) {
    orFailure(false, [=] {
        HidAdapter* const adapter = adapterBehind(device);
        if (adapter != nullptr) {
            adapter->close();
        }
        return true;
    });
}
