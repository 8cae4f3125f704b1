/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* Runs that last: each prints how long it was and what came of it, a bar between both, or why it
 * failed. */
#include "support.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(int argc, char** argv) {
    const char* const run = argc > 1 ? argv[1] : "";
    const unsigned long count = argc > 2 ? strtoul(argv[2], NULL, 10) : 0;
    if (strcmp(run, "lives") == 0 && count > 0) {
        runLives(count);
    } else if (strcmp(run, "notifications") == 0 && count > 2 && argc > 3) {
        runNotifications(count, strtoul(argv[3], NULL, 10));
    } else if (strcmp(run, "signals") == 0 && argc > 2) {
        runSignals(strtod(argv[2], NULL));
    } else if (strcmp(run, "stops") == 0 && count > 0) {
        runStops(count);
    } else if (strcmp(run, "descriptors") == 0 && count > 0) {
        runDescriptors(count);
    } else if (strcmp(run, "memory") == 0 && count > 0) {
        runMemory(count);
    } else if (strcmp(run, "threads") == 0 && count > 0) {
        runThreads(count);
    } else {
        fail("usage: veltrasdk_endurance lives COUNT | notifications COUNT PER_SECOND | signals "
             "SECONDS | "
             "stops COUNT | descriptors HIGHEST | memory HIGHEST | threads HIGHEST");
    }
    return 0;
}
