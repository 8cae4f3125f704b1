// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usb/DeviceFiles.hpp"

#include "device/UsbDescriptors.hpp"

#include <array>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace test_support {

using usbip::FileDescriptor;
using virtual_adapter::AdapterSettings;
using virtual_adapter::Bytes;

namespace {

std::string hex(const Bytes& bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02X", byte);
        text += digits.data();
    }
    return text;
}

/// A FIFO is writable or not as we like. A node that the test bed makes itself is always writable,
/// and libusb spins on it.
FileDescriptor makeFifo(UMockdevTestbed* testbed, unsigned port) {
    gchar* const root = umockdev_testbed_get_root_dir(testbed);
    const std::filesystem::path node = root + nodePath(port);
    g_free(root);
    std::filesystem::create_directories(node.parent_path());
    constexpr mode_t readableAndWritable = 0666;
    FileDescriptor fifo;
    if (mkfifo(node.c_str(), readableAndWritable) == 0) {
        fifo = FileDescriptor(open(node.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    }
    constexpr int oneSlot = 4096;
    if (!fifo.isOpen() || fcntl(fifo.get(), F_SETPIPE_SZ, oneSlot) < 0) {
        throw std::runtime_error("cannot make the device node " + node.string());
    }
    return fifo;
}

} // namespace

std::string nodePath(unsigned port) {
    return "/dev/bus/usb/001/00" + std::to_string(port + 1);
}

std::string describe(const AdapterSettings& settings, unsigned port) {
    Bytes descriptors = deviceDescriptor(settings.identity);
    const Bytes configuration = configurationDescriptor(settings.identity);
    descriptors.insert(descriptors.end(), configuration.begin(), configuration.end());
    const std::string number = std::to_string(port + 1);
    const bool fullSpeed = speedOf(settings.identity) == virtual_adapter::UsbSpeed::Full;
    return "P: /devices/usb1/1-" + std::to_string(port) +
           "\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\nE: DEVNAME=" + nodePath(port) +
           "\nE: BUSNUM=001\nE: DEVNUM=00" + number +
           "\nE: MAJOR=189\nE: MINOR=" + std::to_string(port) +
           "\nA: dev=189:" + std::to_string(port) + "\nA: busnum=1\nA: devnum=" + number +
           "\nA: speed=" + (fullSpeed ? "12" : "480") +
           "\nA: bConfigurationValue=1\nH: descriptors=" + hex(descriptors) + "\n";
}

DeviceNode::DeviceNode(UMockdevTestbed* testbed, unsigned port) : fifo(makeFifo(testbed, port)) {
    showReadiness(false);
}

void DeviceNode::showReadiness(bool ready) {
    if (ready == showsReady) {
        return;
    }
    showsReady = ready;
    uint8_t slot = 0;
    const ssize_t moved = ready ? read(fifo.get(), &slot, 1) : write(fifo.get(), &slot, 1);
    if (moved != 1) {
        ADD_FAILURE() << "the device node has lost its state";
    }
}

} // namespace test_support
