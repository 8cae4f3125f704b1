/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

#include "support.h"

#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

enum { timeoutMs = 20, longestStopMs = 50, longestRunMs = 50 };

static void sleepUpTo(long milliseconds) {
    const struct timespec time = {.tv_nsec = random() % (milliseconds * 1000000)};
    nanosleep(&time, NULL);
}

/* Stops the parent, as a debugger or a shell does, for less and for more than its time-out. */
static void stopParent(unsigned long count, int begin) {
    const pid_t parent = getppid();
    char byte = 0;
    if (read(begin, &byte, 1) != 1) {
        _exit(1);
    }
    for (unsigned long i = 0; i < count && getppid() == parent; ++i) {
        kill(parent, SIGSTOP);
        sleepUpTo(longestStopMs);
        kill(parent, SIGCONT);
        sleepUpTo(longestRunMs);
    }
    _exit(0);
}

void runStops(unsigned long count) {
    /* Before there is an object, as the contract has it. */
    int ends[2];
    const pid_t stopper = pipe(ends) == 0 ? fork() : -1;
    if (stopper == 0) {
        stopParent(count, ends[0]);
    }
    VeltraSDK_Handle* const patient = connected(60000);
    const struct Strings strings = readStrings(patient);
    VeltraSDK_Destroy(patient);
    VeltraSDK_Handle* const handle = connected(timeoutMs);
    const double began = now();
    if (stopper < 0 || write(ends[1], "", 1) != 1) {
        fail("no process can be made that stops this one");
    }
    unsigned long operations = 0;
    unsigned long late = 0;
    int status = -1;
    while (waitpid(stopper, &status, WNOHANG) == 0) {
        const int16_t result = readAgain(handle, &strings, operations++);
        late += result == ResultCode_NoResponse;
        if (result != 0 && result != ResultCode_NoResponse) {
            fail("operation %lu: 0x%04X", operations, (unsigned)(uint16_t)result);
        }
    }
    if (status != 0) {
        fail("the process that stops this one has failed");
    }
    const double seconds = now() - began;
    const uint64_t unmatched = VeltraSDK_GetUnmatchedResponses(handle);
    VeltraSDK_Destroy(handle);
    printf("%.0f s|%lu stops, %lu operations: %lu had no answer in time, %lu late answers dropped, "
           "none mixed up\n",
           seconds, count, operations, late, (unsigned long)unmatched);
}
