// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "guest/outOfTheWay.hpp"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace guest {

namespace {

/// Programs that raise the limit do not expect anybody up there either.
constexpr rlim_t highestUsual = 1024;
/// Room for all of ours.
constexpr rlim_t keptBelowLimit = 128;

} // namespace

int outOfTheWay(int descriptor) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur <= 2 * keptBelowLimit) {
        return descriptor;
    }
    const rlim_t usable = limit.rlim_cur < highestUsual ? limit.rlim_cur : highestUsual;
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, static_cast<int>(usable - keptBelowLimit));
    if (moved < 0) {
        return descriptor;
    }
    close(descriptor);
    return moved;
}

} // namespace guest
