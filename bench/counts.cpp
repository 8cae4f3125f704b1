// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Prints the counts that do not depend on the machine, one "name value" a line.
#include "LoopbackHid.hpp"
#include "allocations.hpp"
#include "operations.hpp"

#include <chrono>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <thread>

namespace {

constexpr size_t calls = 1000;
constexpr size_t longCalls = 10;

/// Allocations of the library for one call of @p operation in steady state.
double allocationsOf(size_t count, const Operations::Operation& operation) {
    operation.run(); // buffers that are kept grow once
    const size_t before = allocationsSoFar();
    for (size_t i = 0; i < count; ++i) {
        if (!operation.run()) {
            throw std::runtime_error(operation.name + " failed");
        }
    }
    return static_cast<double>(allocationsSoFar() - before) / static_cast<double>(count);
}

void countAllocations(size_t reportSize, bool strict) {
    const Operations operations(reportSize, strict);
    const auto print = [&](size_t count, const Operations::Operation& operation) {
        std::cout << "allocations_" << (strict ? "strict_" : "") << operation.name << '_'
                  << reportSize << ' ' << allocationsOf(count, operation) << '\n';
    };
    for (const Operations::Operation& operation : operations.small()) {
        print(calls, operation);
    }
    print(longCalls, operations.longRequest());
}

/// What opening a queue allocates cancels between two lengths.
void countAllocationsOfQueue(size_t reportSize) {
    Operations operations(reportSize);
    const auto allocated = [&](size_t notifications) {
        return allocationsOf(1, {"queuedNotification", [&operations, notifications] {
                                     return operations.queueNotifications(notifications);
                                 }});
    };
    const double difference = allocated(2 * calls) - allocated(calls);
    std::cout << "allocations_queuedNotification_" << reportSize << ' '
              << difference / static_cast<double>(calls) << '\n';
}

/// Read calls a second of a connected object whose device is gone.
void countReadsWhileUnplugged() {
    constexpr std::chrono::seconds watched{5};
    VeltraSDK sdk(-1);
    sdk.connect("");
    const size_t before = loopback_hid::readCalls();
    loopback_hid::unplug(true);
    std::this_thread::sleep_for(watched);
    std::cout << "reads_per_second_unplugged "
              << static_cast<double>(loopback_hid::readCalls() - before) /
                     static_cast<double>(watched.count())
              << '\n';
    loopback_hid::unplug(false);
}

} // namespace

int main() {
    try {
        for (const size_t reportSize : {64U, 1024U}) {
            countAllocations(reportSize, false);
            countAllocations(reportSize, true);
            countAllocationsOfQueue(reportSize);
        }
        countReadsWhileUnplugged();
    } catch (const std::exception& error) {
        std::cerr << "bench_counts: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
