#include "attach/HostPort.hpp"
#include "device/Utf16.hpp"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <stdexcept>

// The project hides its symbols by default; a hidden one would leave the real hidapi in charge.
#pragma GCC visibility push(default)
#include <hidapi.h>
#pragma GCC visibility pop

// The eight functions of hidapi that the library calls, before the real ones. The program's other
// hid_ functions remain hidapi's own.

using virtual_adapter::AdapterSettings;
using virtual_adapter::Bytes;
using virtual_adapter::HostPort;
using virtual_adapter::UsbIdentity;

struct hid_device_ {
    HostPort port;
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

hid_device* plugIn() {
    try {
        return new hid_device{HostPort(environmentSettings())};
    } catch (const std::invalid_argument& error) {
        complain(std::string("no adapter: ") + error.what());
        return nullptr;
    }
}

/// The one device, null when the environment asks for an impossible one. It outlives the program's
/// static objects: a thread may still be reading while they are destroyed.
hid_device* theDevice() {
    // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): its port has a lock.
    static hid_device* const device = plugIn();
    return device;
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
    auto* const listed = new ListedDevice;
    hid_device_info& info = listed->info;
    info.path = listed->path.data();
    info.vendor_id = settings.identity.vendorId;
    info.product_id = settings.identity.productId;
    info.release_number = settings.identity.deviceRelease;
    info.bus_type = HID_API_BUS_USB;
    if (withStrings) {
        listed->serialNumber = wideText(settings.serialNumber);
        listed->manufacturer = wideText(settings.identity.manufacturer);
        listed->product = wideText(settings.identity.model.name);
        info.serial_number = listed->serialNumber.data();
        info.manufacturer_string = listed->manufacturer.data();
        info.product_string = listed->product.data();
    }
    return &info;
}

} // namespace

int hid_init() {
    return theDevice() == nullptr ? -1 : 0;
}

int hid_exit() {
    hid_device* const device = theDevice();
    if (device != nullptr && device->port.isOpen()) {
        complain("hid_exit while a device is open: the real hidapi aborts here too");
        std::abort();
    }
    return 0;
}

// NOLINTNEXTLINE(readability-identifier-naming): hidapi's names.
hid_device_info* hid_enumerate(unsigned short vendor_id, unsigned short product_id) {
    hid_device* const device = theDevice();
    if (device == nullptr || !device->port.isOnBus()) {
        return nullptr;
    }
    const AdapterSettings& settings = device->port.adapterSettings();
    const UsbIdentity& identity = settings.identity;
    if ((vendor_id != 0 && vendor_id != identity.vendorId) ||
        (product_id != 0 && product_id != identity.productId)) {
        return nullptr;
    }
    return listDevice(settings, device->port.isAccessible());
}

void hid_free_enumeration(hid_device_info* devs) {
    delete reinterpret_cast<ListedDevice*>(devs);
}

hid_device* hid_open_path(const char* path) {
    hid_device* const device = theDevice();
    if (device == nullptr || path == nullptr || std::strcmp(path, devicePath) != 0) {
        return nullptr;
    }
    return device->port.open() ? device : nullptr;
}

int hid_write(hid_device* device, const unsigned char* data, size_t length) {
    if (device == nullptr || data == nullptr || length == 0) {
        return -1;
    }
    // The report identifier 0 of unnumbered reports does not go on the wire.
    const size_t skipped = data[0] == 0 ? 1 : 0;
    const bool written = device->port.write(Bytes(data + skipped, data + length));
    return written ? static_cast<int>(length) : -1;
}

int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds) {
    if (device == nullptr || data == nullptr) {
        return -1;
    }
    return device->port.read(data, length, milliseconds);
}

void hid_close(hid_device* device) {
    if (device != nullptr) {
        device->port.close();
    }
}
