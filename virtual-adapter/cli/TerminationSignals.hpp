// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/FileDescriptor.hpp"

#include <sys/signalfd.h>

#include <csignal>

namespace virtual_adapter {

/// Becomes readable when the process is asked to end, instead of ending it. What the starter of the
/// process ignores, as nohup does, stays ignored. Call it before the process has a second thread.
inline usbip::FileDescriptor terminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction inherited {};
        sigaction(signal, nullptr, &inherited);
        if (inherited.sa_handler != SIG_IGN) {
            sigaddset(&signals, signal);
        }
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return usbip::FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC));
}

} // namespace virtual_adapter
