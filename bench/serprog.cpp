// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What `veltra expose flash` adds to reading 256 KiB: the time inside its operations beside that of
// the same operations called directly. Run under the virtual adapter, with frames of 1 ms.
#include "Session.hpp"
#include "expose/AdapterFlash.hpp"
#include "expose/serprog/Server.hpp"

#include "usbip/ListeningSocket.hpp"

#include <arpa/inet.h>
#include <sys/socket.h>

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <thread>

using veltra::Bytes;

namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t pieceBytes = 0x8000;
constexpr int pieces = 8;
const double maxRatio = 1.1;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Measures the time inside another bus.
class TimedBus : public serprog::SpiBus {
public:
    explicit TimedBus(serprog::SpiBus& timed) : bus(timed) {}

    void begin() override { bus.begin(); }
    std::optional<Bytes> transfer(const Bytes& send, size_t count) override {
        const auto start = Clock::now();
        std::optional<Bytes> read = bus.transfer(send, count);
        milliseconds += millisecondsSince(start);
        return read;
    }
    std::optional<uint32_t> setClock(uint32_t hertz) override { return bus.setClock(hertz); }
    bool select(uint8_t chipSelect) override { return bus.select(chipSelect); }

    double milliseconds = 0;

private:
    serprog::SpiBus& bus;
};

Bytes readCommand(int piece) {
    return {0x03, 0x00, static_cast<uint8_t>(0x80 * (piece & 1)), 0x00};
}

double readDirectly(VeltraSDK& adapter) {
    const auto start = Clock::now();
    for (int piece = 0; piece < pieces; ++piece) {
        Bytes send = readCommand(piece);
        Bytes received;
        if (adapter.spiTransfer(send, received, static_cast<uint16_t>(send.size() + pieceBytes)) !=
            ResultCode_Success) {
            throw std::runtime_error("a transfer failed");
        }
    }
    return millisecondsSince(start);
}

/// As flashrom reads: one command, all of its answer, the next.
void readAsClient(uint16_t port) {
    const usbip::FileDescriptor client(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        throw std::runtime_error("cannot connect");
    }
    for (int piece = 0; piece < pieces; ++piece) {
        Bytes command{0x13, 0x04, 0x00, 0x00, 0x00, 0x80, 0x00};
        const Bytes send = readCommand(piece);
        command.insert(command.end(), send.begin(), send.end());
        Bytes answer(1 + pieceBytes);
        if (::send(client.get(), command.data(), command.size(), 0) !=
                static_cast<ssize_t>(command.size()) ||
            recv(client.get(), answer.data(), answer.size(), MSG_WAITALL) !=
                static_cast<ssize_t>(answer.size()) ||
            answer[0] != 0x06) {
            throw std::runtime_error("the server refused");
        }
    }
}

int measure() {
    veltra::Options options;
    options.voltage = "3.3";
    veltra::Output output(options);
    veltra::Session session(options, output);
    veltra::AdapterFlash flash(session, output, {}, 50'000'000);
    const double directly = readDirectly(session.adapter());

    TimedBus timed(flash);
    usbip::FileDescriptor listener = usbip::listeningSocket("127.0.0.1", 0);
    const uint16_t port = usbip::portOf(listener);
    serprog::Server server(std::move(listener), timed, {});
    std::thread serving([&server] { server.run(true); });
    const auto start = Clock::now();
    readAsClient(port);
    const double inAll = millisecondsSince(start);
    serving.join();

    const double ratio = timed.milliseconds / directly;
    std::printf(
        "256 KiB through serprog: %.0f ms, %.0f ms of it inside operations; these directly: "
        "%.0f ms; ratio %.3f, at most %.1f\n",
        inAll, timed.milliseconds, directly, ratio, maxRatio);
    return ratio <= maxRatio ? 0 : 1;
}

} // namespace

int main() {
    try {
        return measure();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
