// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capture/CaptureFile.hpp"

#include "guest/outOfTheWay.hpp"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <initializer_list>
#include <sys/stat.h>
#include <unistd.h>

namespace capture {

namespace {

/// Keeps from the program what a failed write raises: SIGPIPE of a reader that has gone, SIGXFSZ of
/// a file that may not grow.
class WithoutSignals {
public:
    WithoutSignals() {
        sigemptyset(&signals);
        sigaddset(&signals, SIGPIPE);
        sigaddset(&signals, SIGXFSZ);
        sigset_t pending;
        // One that waits already is the program's own.
        if (sigpending(&pending) == 0) {
            for (const int signal : {SIGPIPE, SIGXFSZ}) {
                if (sigismember(&pending, signal) != 0) {
                    sigdelset(&signals, signal);
                }
            }
        }
        pthread_sigmask(SIG_BLOCK, &signals, &before);
    }
    ~WithoutSignals() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;

    void dropRaised() const {
        const timespec atOnce{};
        while (sigtimedwait(&signals, nullptr, &atOnce) > 0) {
        }
    }

private:
    sigset_t signals{};
    sigset_t before{};
};

} // namespace

int CaptureFile::open(const char* path) {
    const int opened = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0666);
    struct stat status {};
    if (opened < 0 || fstat(opened, &status) != 0) {
        return errno;
    }
    descriptor = guest::outOfTheWay(opened);
    device = status.st_dev;
    inode = status.st_ino;
    return 0;
}

bool CaptureFile::isStillOpen() const {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && status.st_dev == device && status.st_ino == inode;
}

int CaptureFile::append(const uint8_t* data, size_t size) const {
    if (!isStillOpen()) {
        return EBADF;
    }
    const WithoutSignals quiet;
    for (;;) {
        const ssize_t written = write(descriptor, data, size);
        if (written == static_cast<ssize_t>(size)) {
            return 0;
        }
        if (written >= 0) {
            return ENOSPC; // a file takes less than all of it only where there is no room
        }
        if (errno != EINTR) {
            const int error = errno;
            quiet.dropRaised();
            return error;
        }
    }
}

} // namespace capture
