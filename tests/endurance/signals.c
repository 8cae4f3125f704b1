/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

#include "support.h"

#include <dirent.h>
#include <dlfcn.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>

enum { intervalNanoseconds = 500000, maxTimers = 64, operationsOfALink = 1000 };

static unsigned long counted = 0;

/* In front of the C library's, for libusb: the kernel's own answers at once whatever signal comes;
   what stands in for it on the test bed asks another process, and would be interrupted. */
__attribute__((visibility("default"))) int ioctl(int descriptor, unsigned long request, ...) {
    int (*next)(int, unsigned long, void*) = NULL;
    *(void**)&next = dlsym(RTLD_NEXT, "ioctl"); /* as POSIX has it */
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before);
    const int result = next(descriptor, request, argument);
    pthread_sigmask(SIG_SETMASK, &before, NULL);
    return result;
}

static void count(int signal) {
    (void)signal;
    __atomic_fetch_add(&counted, 1, __ATOMIC_RELAXED); /* in any thread */
}

/* A signal every 500 us to one thread. */
static timer_t signalThread(pid_t thread) {
    struct sigevent event = {.sigev_notify = SIGEV_THREAD_ID, .sigev_signo = SIGUSR1};
    event._sigev_un._tid = thread; /* sigev_notify_thread_id, which this C library does not name */
    const struct itimerspec times = {.it_interval = {.tv_nsec = intervalNanoseconds},
                                     .it_value = {.tv_nsec = intervalNanoseconds}};
    timer_t timer;
    if (timer_create(CLOCK_MONOTONIC, &event, &timer) != 0 ||
        timer_settime(timer, 0, &times, NULL) != 0) {
        fail("no timer can be made");
    }
    return timer;
}

/* To every thread that there is: the program's own, the library's and hidapi's. */
static unsigned signalThreads(timer_t* timers) {
    unsigned number = 0;
    DIR* const threads = opendir("/proc/self/task");
    for (const struct dirent* entry = readdir(threads); entry != NULL && number < maxTimers;
         entry = readdir(threads)) {
        if (entry->d_name[0] != '.') {
            timers[number++] = signalThread((pid_t)atol(entry->d_name));
        }
    }
    closedir(threads);
    return number;
}

void runSignals(double seconds) {
    /* Without SA_RESTART every system call that waits is interrupted. */
    const struct sigaction action = {.sa_handler = count};
    sigaction(SIGUSR1, &action, NULL);
    timer_t timers[maxTimers];
    unsigned long links = 0;
    unsigned long operations = 0;
    unsigned threads = 0;
    struct Strings strings;
    VeltraSDK_Handle* handle = NULL;
    const double began = now();
    for (; now() - began < seconds; ++operations) {
        if (operations % operationsOfALink == 0) {
            for (; threads > 0; --threads) {
                timer_delete(timers[threads - 1]);
            }
            VeltraSDK_Destroy(handle);
            /* This thread is interrupted while it connects, too. */
            timers[0] = signalThread(gettid());
            handle = connected(60000);
            timer_delete(timers[0]);
            strings = readStrings(handle);
            threads = signalThreads(timers);
            ++links;
        }
        const int16_t result = readAgain(handle, &strings, operations);
        if (result != 0) {
            fail("operation %lu: 0x%04X", operations, (unsigned)(uint16_t)result);
        }
    }
    const double lasted = now() - began;
    const unsigned signalled = threads;
    for (; threads > 0; --threads) {
        timer_delete(timers[threads - 1]);
    }
    VeltraSDK_Destroy(handle);
    if (counted == 0) {
        fail("no signal came");
    }
    printf("%.0f s|%lu signals to %u threads, %lu operations over %lu links: all succeeded\n",
           lasted, counted, signalled, operations, links);
}
