#pragma once

#include "attach/FileDescriptor.hpp"

#include <sys/signalfd.h>

#include <csignal>

namespace virtual_adapter {

/// Becomes readable when the process is asked to end, instead of ending it. Call it before the
/// process has a second thread.
inline FileDescriptor terminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC));
}

} // namespace virtual_adapter
