// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/tty/Pty.hpp"

// Rates of any number are told by the kernel's structure alone, which excludes <termios.h>.
#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace tty {

namespace {

// The first byte of what is read in packet mode (tty_ioctl(4)): data, or what has happened.
constexpr uint8_t dataFollows = 0x00;
constexpr uint8_t inputFlushed = 0x01;
constexpr uint8_t settingsChanged = 0x40;

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

termios2 settingsOf(const usbip::FileDescriptor& terminal) {
    termios2 settings{};
    if (ioctl(terminal.get(), TCGETS2, &settings) != 0) {
        fail("cannot read the terminal's settings");
    }
    return settings;
}

void set(const usbip::FileDescriptor& terminal, const termios2& settings) {
    if (ioctl(terminal.get(), TCSETS2, &settings) != 0) {
        fail("cannot set up the terminal");
    }
}

/// stty(1) and many others know no rate but these.
constexpr std::array<std::pair<uint32_t, uint32_t>, 11> namedRates{{
    {1200, B1200},
    {2400, B2400},
    {4800, B4800},
    {9600, B9600},
    {19200, B19200},
    {38400, B38400},
    {57600, B57600},
    {115200, B115200},
    {230400, B230400},
    {460800, B460800},
    {921600, B921600},
}};

uint32_t codeOf(uint32_t baudRate) {
    for (const auto& [rate, code] : namedRates) {
        if (rate == baudRate) {
            return code;
        }
    }
    return BOTHER;
}

/// Bytes as they are, none of them echoed: what the line says must not go back to it.
termios2 raw(const Line& line) {
    termios2 settings{};
    settings.c_cflag = CS8 | CREAD | CLOCAL | codeOf(line.baudRate) |
                       (line.stopBits == 2 ? CSTOPB : 0U) | (line.rtsCts ? CRTSCTS : 0U);
    settings.c_lflag = EXTPROC; // tells of every change
    settings.c_ispeed = line.baudRate;
    settings.c_ospeed = line.baudRate;
    settings.c_cc[VMIN] = 1;
    return settings;
}

} // namespace

Pty::Pty(const Line& atStart) : master(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    std::array<char, 64> path{};
    if (!master.isOpen() || grantpt(master.get()) != 0 || unlockpt(master.get()) != 0 ||
        ptsname_r(master.get(), path.data(), path.size()) != 0) {
        fail("cannot make a pseudo terminal");
    }
    name = path.data();
    slave = usbip::FileDescriptor(open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    const int on = 1;
    if (!slave.isOpen() || ioctl(master.get(), TIOCPKT, &on) != 0) {
        fail("cannot open the pseudo terminal");
    }
    set(slave, raw(atStart));
    (void)read(); // that this has set the line
}

Pty::Input Pty::read() {
    Input input;
    std::array<uint8_t, 4096> buffer{};
    const ssize_t size = ::read(master.get(), buffer.data(), buffer.size());
    if (size < 0 && errno != EAGAIN && errno != EINTR) {
        fail("cannot read from the terminal");
    }
    if (size <= 0) {
        return input;
    }
    if (buffer[0] == dataFollows) {
        input.data.assign(buffer.begin() + 1, buffer.begin() + size);
        return input;
    }
    input.isLineSet = (buffer[0] & settingsChanged) != 0;
    input.isFlushed = (buffer[0] & inputFlushed) != 0;
    termios2 settings = settingsOf(master);
    if (input.isLineSet && (settings.c_lflag & EXTPROC) == 0) {
        // A program that sets everything takes back what tells of the next change.
        settings.c_lflag |= EXTPROC;
        set(master, settings);
    }
    return input;
}

size_t Pty::write(const uint8_t* data, size_t size) {
    const ssize_t written = ::write(master.get(), data, size);
    if (written < 0 && errno != EAGAIN && errno != EINTR) {
        fail("cannot write to the terminal");
    }
    return written < 0 ? 0 : static_cast<size_t>(written);
}

Line Pty::line() {
    const termios2 settings = settingsOf(master);
    return {settings.c_ospeed, (settings.c_cflag & CSTOPB) != 0 ? 2U : 1U,
            (settings.c_cflag & CRTSCTS) != 0};
}

} // namespace tty
