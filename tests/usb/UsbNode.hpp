// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/UsbDevice.hpp"
#include "usb/DeviceFiles.hpp"

#include <umockdev.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <string>

#include <linux/usbdevice_fs.h>

namespace test_support {

/// One virtual adapter at a port of the test bed's bus, with the device node through which libusb
/// reaches it. The node answers as the kernel's usbfs does.
///
/// The test bed's thread answers the library's calls; the test's thread plays the adapter's fate.
class UsbNode {
public:
    UsbNode(UMockdevTestbed* testbed, const virtual_adapter::AdapterSettings& settings,
            unsigned port);
    ~UsbNode();
    UsbNode(const UsbNode&) = delete;
    UsbNode& operator=(const UsbNode&) = delete;

    /// What hidapi calls it.
    [[nodiscard]] std::string path() const { return "1-" + std::to_string(port) + ":1.0"; }

    [[nodiscard]] unsigned busPort() const { return port; }

    /// Pulls the adapter out. It stays away.
    void unplug();

    /// Pulls the adapter out as soon as it has taken so many more reports.
    void unplugAfter(size_t outputTransfers);

    /// While false, the adapter's output endpoint answers NAK.
    void acceptOutput(bool accept);

    /// Lets hidapi be sent more reports than have been read, which it then loses.
    void sendWithoutPacing();

    /// Tells that a report has been read out of hidapi.
    void reportRead();

    /// Counts of what the host has done so far.
    struct Activity {
        size_t outputTransfers = 0;
        size_t inputReports = 0;
        size_t claims = 0;
        size_t releases = 0;
        size_t driverDetached = 0;
        size_t driverAttached = 0;
    };

    /// Waits until @p condition holds; false when it does not within a generous limit.
    bool waitFor(const std::function<bool(const Activity&)>& condition);

private:
    /// A transfer as the client submitted it.
    struct Urb {
        uint64_t id;
        UMockdevIoctlClient* client;
        UMockdevIoctlData* descriptor;
        UMockdevIoctlData* buffer;

        [[nodiscard]] usbdevfs_urb& fields() const;
    };

    static gboolean handleIoctl(UMockdevIoctlBase* base, UMockdevIoctlClient* client,
                                gpointer node);
    static void handleVanished(UMockdevIoctlBase* base, UMockdevIoctlClient* client, gpointer node);

    // Each returns 0 or a negative error number.
    int answer(UMockdevIoctlClient* client, UMockdevIoctlData* argument);
    int submit(UMockdevIoctlClient* client, UMockdevIoctlData* argument);
    int reap(UMockdevIoctlClient* client, UMockdevIoctlData* argument);
    int discard(UMockdevIoctlData* argument);
    int commandDriver(UMockdevIoctlData* argument);

    void start(const Urb& urb);
    void startPacedInput();
    void end(const virtual_adapter::UsbResult& result);
    void end(const std::deque<Urb>::iterator& urb, int status, size_t actualLength);
    void drop(std::deque<Urb>& urbs, const UMockdevIoctlClient* client);
    void leaveBus();
    void showReadiness();

    UMockdevTestbed* testbed;
    unsigned port;
    std::string sysPath;
    DeviceNode deviceNode;
    UMockdevIoctlBase* ioctls;

    std::mutex mutex;
    std::condition_variable changed;
    virtual_adapter::UsbDevice device;
    std::deque<Urb> pending;
    std::deque<Urb> done;
    /// Input transfers that wait until more has been read.
    std::deque<Urb> held;
    uint64_t lastId = 0;
    size_t unreadReports = 0;
    size_t maxOutputTransfers = std::numeric_limits<size_t>::max();
    bool paced = true;
    bool pluggedIn = true;
    const UMockdevIoctlClient* owner = nullptr;
    Activity activity;
};

} // namespace test_support
