// Prints the counts that do not depend on the machine, one "name value" a line.
#include "LoopbackHid.hpp"
#include "allocations.hpp"

#include <veltrasdk/VeltraSDK.hpp>

#include <chrono>
#include <iostream>
#include <thread>

namespace {

constexpr size_t operations = 1000;
constexpr size_t longMessage = 65'535;
constexpr size_t longMessageHeader = 6;

/// Allocations of the library for one call of @p operation in steady state.
template <typename Operation>
double allocationsOf(size_t calls, const Operation& operation) {
    operation(); // buffers that are kept grow once
    const size_t before = allocationsSoFar();
    for (size_t i = 0; i < calls; ++i) {
        operation();
    }
    return static_cast<double>(allocationsSoFar() - before) / static_cast<double>(calls);
}

void countAllocations(size_t reportSize, const std::string& model) {
    loopback_hid::setReportSize(reportSize);
    VeltraSDK sdk(-1);
    sdk.connect("");
    std::vector<uint8_t> text;
    std::cout << "allocations_small_operation_" << model << ' '
              << allocationsOf(operations, [&] { sdk.getUsbString(text, 1); }) << '\n';

    const std::vector<uint8_t> message(longMessage, 0x55);
    const size_t payload = reportSize - 2;
    const size_t packets = (longMessage + longMessageHeader + payload - 1) / payload;
    std::cout << "allocations_beyond_packets_64k_request_" << model << ' '
              << allocationsOf(10, [&] { sdk.uartSendMessage(message); }) -
                     static_cast<double>(packets)
              << '\n';
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
    countAllocations(64, "full_speed");
    countAllocations(1024, "high_speed");
    countReadsWhileUnplugged();
    return 0;
}
