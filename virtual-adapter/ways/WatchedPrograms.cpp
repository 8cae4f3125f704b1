// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "ways/WatchedPrograms.hpp"

#include <sys/syscall.h>
#include <unistd.h>

#include <iterator>
#include <utility>

namespace virtual_adapter {

void WatchedPrograms::add(pid_t program) {
    if (program <= 0 || programs.count(program) > 0) {
        return;
    }
    // The C library declares its own for C alone.
    usbip::FileDescriptor watched(static_cast<int>(syscall(SYS_pidfd_open, program, 0)));
    if (watched.isOpen()) {
        programs.emplace(program, std::move(watched));
    }
}

void WatchedPrograms::watch(std::vector<pollfd>& polled) const {
    for (const auto& [program, descriptor] : programs) {
        polled.push_back({descriptor.get(), POLLIN, 0});
    }
}

const pollfd* WatchedPrograms::removeEnded(const pollfd* events) {
    for (auto each = programs.begin(); each != programs.end(); ++events) {
        each = events->revents != 0 ? programs.erase(each) : std::next(each);
    }
    return events;
}

} // namespace virtual_adapter
