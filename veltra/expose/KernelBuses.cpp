// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/KernelBuses.hpp"

#include "Inbox.hpp"
#include "Interruption.hpp"
#include "expose/tiny_usb/Device.hpp"

#include "usbip/Server.hpp"
#include "usbip/Vhci.hpp"

#include <veltrasdk/status.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <list>
#include <stdexcept>
#include <string>
#include <sys/socket.h>

namespace veltra {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

const fs::path driver = "/sys/bus/usb/drivers/i2c-tiny-usb";
const fs::path usbDevices = "/sys/bus/usb/devices";
constexpr auto lookAgain = 50ms;
/// For the kernel to find a driver for what was plugged in.
constexpr auto patience = 20s;

Failure kernelFailure(const std::string& text) {
    return Failure(ExitStatus::Refused, "kernel", text)
        .advise("Load what it needs: sudo modprobe -a vhci-hcd i2c-tiny-usb i2c-dev");
}

/// The driver takes only identifiers that it knows.
void makeKnown() {
    const std::string identifiers = "1209 0003";
    std::ifstream known(driver / "new_id");
    for (std::string line; std::getline(known, line);) {
        if (line == identifiers) {
            return;
        }
    }
    if (!known.is_open() && !fs::exists(driver)) {
        throw kernelFailure("the kernel's driver i2c-tiny-usb is not loaded");
    }
    std::ofstream added(driver / "new_id");
    if (!(added << identifiers << std::flush)) {
        throw Failure(ExitStatus::NoAdapter, "permission", "only root may lend a bus to the kernel")
            .advise("Use sudo; or, without rights: veltra run -- PROGRAM");
    }
}

/// One bus of the adapter as a kernel's messages use it.
class AdapterBus : public tiny_usb::I2cBus {
public:
    AdapterBus(Session& over, Output& tells, const I2cSettings& wanted)
        : session(over), output(tells), settings(wanted), i2c(over, wanted) {}

    tiny_usb::Outcome write(uint8_t address, const tiny_usb::Bytes& data, bool hold) override {
        return attempt([&] { i2c.write(address, {}, data, hold); });
    }

    tiny_usb::Outcome read(uint8_t address, const tiny_usb::Bytes& registerBytes,
                           tiny_usb::Bytes& data, bool hold) override {
        return attempt([&] {
            data = i2c.read(address, registerBytes, static_cast<uint16_t>(data.size()), hold);
        });
    }

    void release() override {
        // Initialising a controller ends what holds its bus.
        session.forget("i2c bus " + std::to_string(settings.bus));
        attempt([&] { const I2c again(session, settings); });
    }

    [[nodiscard]] int number() const { return settings.bus; }

private:
    tiny_usb::Outcome attempt(const std::function<void()>& transfer) {
        try {
            transfer();
            told.clear();
            return tiny_usb::Outcome::Done;
        } catch (const Failure& failure) {
            if (failure.status == VeltraStatus_NotAcknowledged) {
                return tiny_usb::Outcome::NotAcknowledged;
            }
            if (failure.text != told && failure.kind != "interrupted") {
                output.remark("bus " + std::to_string(settings.bus) + ": " + failure.text);
            }
            told = failure.text;
            return tiny_usb::Outcome::Failed;
        }
    }

    Session& session;
    Output& output;
    const I2cSettings settings;
    I2c i2c;
    std::string told;
};

/// Watches the user and the adapter, and says which of the kernel's buses are ours once they are.
class Attendant : public usbip::PollTask {
public:
    Attendant(Session& over, Output& tells, const usbip::Vhci& kernels)
        : session(over), output(tells), controller(kernels) {}

    void expect(int bus, unsigned port) {
        awaited.push_back({bus, port});
        deadline = std::chrono::steady_clock::now() + patience;
    }

    void watch(std::vector<pollfd>& polled, usbip::Time /*now*/) override {
        polled.push_back({Interruption::descriptor(), POLLIN, 0});
        polled.push_back({session.inbox().descriptor(), POLLIN, 0});
    }

    [[nodiscard]] std::optional<usbip::Time> nextDue() const override { return next; }

    void react(const pollfd* events, usbip::Time now) override {
        if (events[0].revents != 0) {
            throw Failure::interruption();
        }
        if (events[1].revents != 0) {
            session.inbox().discard();
        }
        while (!awaited.empty()) {
            const std::string path = pathOf(controller.busIdOf(awaited.front().port));
            if (path.empty()) {
                break;
            }
            const int bus = awaited.front().bus;
            awaited.pop_front();
            output.result({{"op", "expose.kernel"}, {"bus", bus}, {"path", path}},
                          path + " is bus " + std::to_string(bus));
        }
        if (!awaited.empty() && now >= deadline) {
            throw kernelFailure("the kernel has taken the device, and made no bus of it");
        }
        next = awaited.empty() ? std::nullopt : std::optional<usbip::Time>(now + lookAgain);
    }

private:
    struct Awaited {
        int bus;
        unsigned port;
    };

    /// Empty as long as there is none.
    static std::string pathOf(const std::string& busId) {
        std::error_code error;
        for (const fs::directory_entry& entry :
             fs::directory_iterator(usbDevices / (busId + ":1.0"), error)) {
            const std::string name = entry.path().filename();
            if (name.rfind("i2c-", 0) == 0 && fs::exists("/dev/" + name)) {
                return "/dev/" + name;
            }
        }
        return "";
    }

    Session& session;
    Output& output;
    const usbip::Vhci& controller;
    std::list<Awaited> awaited;
    usbip::Time deadline{};
    std::optional<usbip::Time> next = usbip::Time{};
};

} // namespace

void lendToKernel(Session& session, Output& output, const std::vector<I2cSettings>& buses) {
    std::list<AdapterBus> lent;
    for (const I2cSettings& settings : buses) {
        lent.emplace_back(session, output, settings);
    }
    makeKnown();
    try {
        const usbip::Vhci controller;
        Attendant attendant(session, output, controller);
        usbip::Server server;
        server.lookAfter(attendant);
        for (AdapterBus& bus : lent) {
            std::array<int, 2> ends{};
            if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
                throw std::runtime_error("cannot make a pair of sockets");
            }
            const usbip::FileDescriptor kernelsEnd(ends[1]);
            server.plugInto(usbip::FileDescriptor(ends[0]),
                            tiny_usb::exportedBus(bus, "I2C bus " + std::to_string(bus.number())));
            const unsigned port = controller.plugIn(kernelsEnd, usbip::Speed::Full);
            attendant.expect(bus.number(), port);
        }
        server.run(usbip::FileDescriptor());
    } catch (const std::runtime_error& error) { // of the kernel's controller
        throw kernelFailure(error.what());
    }
}

} // namespace veltra
