/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

#include "support.h"

#include <signal.h>
#include <stdio.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

enum {
    watchSeconds = 60,
    highestLimit = 32,
    worked = 0,
    refusedAndWorkedLater = 10,
    brokenForGood = 11
};

/* With so few descriptors an object either works or says that it cannot; with enough the same
 * process works. */
static int liveWith(unsigned descriptors) {
    struct rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlim_t enough = limit.rlim_cur;
    alarm(watchSeconds);
    limit.rlim_cur = descriptors;
    setrlimit(RLIMIT_NOFILE, &limit);
    VeltraSDK_Handle* handle = VeltraSDK_Create(10000);
    VeltraSDK_SetStrict(handle, true);
    const bool works =
        VeltraSDK_Connect(handle, NULL) && VeltraSDK_GpioSetVoltage(handle, 3300, true) == 0;
    VeltraSDK_Destroy(handle);
    limit.rlim_cur = enough;
    setrlimit(RLIMIT_NOFILE, &limit);
    if (works) {
        return worked;
    }
    handle = connected(10000);
    const bool worksLater = VeltraSDK_GpioSetVoltage(handle, 3300, true) == 0;
    VeltraSDK_Destroy(handle);
    return worksLater ? refusedAndWorkedLater : brokenForGood;
}

void runLimits(void) {
    unsigned working = 0;
    unsigned refused = 0;
    const double began = now();
    for (unsigned descriptors = 0; descriptors <= highestLimit; ++descriptors) {
        /* Before there is an object, as the contract has it. */
        const pid_t child = fork();
        if (child == 0) {
            _exit(liveWith(descriptors));
        }
        int status = -1;
        waitpid(child, &status, 0);
        if (!WIFEXITED(status)) {
            fail("with %u descriptors: signal %d", descriptors, WTERMSIG(status));
        }
        working += WEXITSTATUS(status) == worked;
        refused += WEXITSTATUS(status) == refusedAndWorkedLater;
        if (WEXITSTATUS(status) != worked && WEXITSTATUS(status) != refusedAndWorkedLater) {
            fail("with %u descriptors: status %d", descriptors, WEXITSTATUS(status));
        }
    }
    printf("%.0f s|0 to %d descriptors: with %u limits it worked, with %u it was refused, and "
           "worked once there were "
           "enough\n",
           now() - began, highestLimit, working, refused);
}
