// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "devices/run.hpp"

#include "Interruption.hpp"
#include "Session.hpp"
#include "devices/AdapterBuses.hpp"
#include "devices/Broker.hpp"
#include "devices/I2cDevice.hpp"
#include "devices/SpiDevice.hpp"
#include "launch/ChildProgram.hpp"
#include "launch/SocketPlace.hpp"
#include "launch/StartFailure.hpp"
#include "launch/preloading.hpp"

#include <csignal>
#include <cstdio>
#include <optional>
#include <stdexcept>

namespace veltra {

namespace {

constexpr unsigned maxDevice = 999;
constexpr unsigned maxBus = 1;
constexpr unsigned maxChipSelect = 3;

std::string numberIn(const std::string& what, const std::string& text, uint64_t max) {
    return std::to_string(parseNumber(what, text, 0, max));
}

void addI2c(devices::Switchboard& switchboard, devices::Buses& buses, const std::string& text) {
    const Assignment map = parseAssignment(text, "N=BUS");
    const auto bus = static_cast<int>(parseNumber("bus", map.value, 0, maxBus));
    switchboard.add("i2c-" + numberIn("device", map.name, maxDevice),
                    std::make_unique<devices::I2cDevice>(buses, bus));
}

void addSpi(devices::Switchboard& switchboard, devices::Buses& buses, const std::string& text) {
    const Assignment map = parseAssignment(text, "B.C=CS");
    const size_t point = map.name.find('.');
    if (point == std::string::npos) {
        throw Failure::ofUsage("'" + map.name + "' is no SPI device: 0.1 is, for /dev/spidev0.1");
    }
    const auto chipSelect =
        static_cast<int>(parseNumber("chip select", map.value, 0, maxChipSelect));
    switchboard.add("spidev" + numberIn("device", map.name.substr(0, point), maxDevice) + "." +
                        numberIn("device", map.name.substr(point + 1), maxDevice),
                    std::make_unique<devices::SpiDevice>(buses, chipSelect));
}

void addDevices(devices::Switchboard& switchboard, devices::Buses& buses,
                const DevicesOfProgram& wanted) {
    const std::vector<std::string> usualI2c{"0=0", "1=1"};
    const std::vector<std::string> usualSpi{"0.0=0", "0.1=1"};
    for (const std::string& map : wanted.i2c.empty() ? usualI2c : wanted.i2c) {
        addI2c(switchboard, buses, map);
    }
    for (const std::string& map : wanted.spi.empty() ? usualSpi : wanted.spi) {
        addSpi(switchboard, buses, map);
    }
}

/// What the child does: returns only where it cannot become the program.
int become(const std::vector<std::string>& program) {
    try {
        launch::execute(program);
    } catch (const launch::StartFailure& failure) {
        (void)std::fprintf(stderr, "veltra: run: %s\n", failure.what());
        return failure.exitStatus;
    }
}

} // namespace

int runProgram(const DevicesOfProgram& wanted, Context& context) {
    AdapterBuses buses(context.session, context.output, wanted.settings);
    devices::Switchboard switchboard;
    try {
        addDevices(switchboard, buses, wanted);
        checkWords(wanted.settings);
        context.session.supplyPins();
        if (!context.session.rehearses()) {
            context.session.adapter(); // before anything is started
        }
        if (Interruption::requested()) {
            throw Failure::interruption();
        }
        std::optional<launch::SocketPlace> place =
            launch::SocketPlace::inDirectoryOfItsOwn("veltra-devices");
        launch::setEnvironment(devices::socketVariable, place->path());
        launch::preload(launch::findLibrary(VELTRA_DEVICES_LIBRARY, VELTRA_PRELOAD_DIRECTORY),
                        launch::PreloadPlace::First);
        launch::ChildProgram child([&] { return become(wanted.program); });
        if (Interruption::requested()) {
            child.send(SIGTERM); // it came before there was anybody to pass it on to
        }
        devices::Broker(switchboard, place->takeListener()).run(child.end());
        const int status = child.wait();
        place.reset(); // nothing is left behind, however this process ends
        child.dieAsItDid();
        return status;
    } catch (Failure& failure) {
        failure.exitStatus = ExitStatus::NotStarted;
        throw;
    } catch (const std::runtime_error& error) {
        throw Failure(ExitStatus::NotStarted, "start", error.what());
    }
}

} // namespace veltra
