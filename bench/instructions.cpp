// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Runs an operation a number of times, for callgrind to count:
// `instructions OPERATION REPORT-SIZE COUNT [strict]`. The operations "notification" and
// "Notification" receive as many notifications, by the class and by C; "queuedNotification" takes
// them from a queue.
#include "operations.hpp"

#include <cstdlib>

int main(int argc, char** argv) {
    if (argc != 4 && argc != 5) {
        return 2;
    }
    const std::string name = argv[1];
    const long count = std::strtol(argv[3], nullptr, 10);
    Operations operations(static_cast<size_t>(std::strtol(argv[2], nullptr, 10)), argc == 5);
    if (name == "notification" || name == "Notification") {
        const bool throughC = name == "Notification";
        return operations.receiveNotifications(throughC, static_cast<size_t>(count)) ? 0 : 1;
    }
    if (name == "queuedNotification") {
        return operations.queueNotifications(static_cast<size_t>(count)) ? 0 : 1;
    }
    const Operations::Operation& operation = operations.find(name);
    for (long i = 0; i < count; ++i) {
        if (!operation.run()) {
            return 1;
        }
    }
    return 0;
}
