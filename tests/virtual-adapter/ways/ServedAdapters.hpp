// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "launch/SocketPlace.hpp"
#include "support/TemporaryDirectory.hpp"
#include "ways/SocketServer.hpp"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

/// Adapters at a socket, served by a thread of the test's process.
class ServedAdapters {
public:
    explicit ServedAdapters(const std::vector<virtual_adapter::AdapterSettings>& adapters)
        : place(launch::SocketPlace::at(directory.path() / "adapter")),
          rack(adapters),
          server(rack, place.takeListener()),
          stop(eventfd(0, EFD_CLOEXEC)),
          thread([this] { server.run(stop); }) {}

    /// What the programs then see is an adapter that has crashed.
    ~ServedAdapters() {
        const uint64_t one = 1;
        (void)!write(stop.get(), &one, sizeof one);
        thread.join();
    }
    ServedAdapters(const ServedAdapters&) = delete;
    ServedAdapters& operator=(const ServedAdapters&) = delete;

    [[nodiscard]] const std::string& path() const { return place.path(); }

private:
    TemporaryDirectory directory;
    launch::SocketPlace place;
    virtual_adapter::AdapterRack rack;
    virtual_adapter::SocketServer server;
    usbip::FileDescriptor stop;
    std::thread thread;
};
