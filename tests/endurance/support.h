/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

#ifndef SUPPORT_H
#define SUPPORT_H

#include <veltrasdk/veltrasdk.h>

#ifdef __cplusplus
extern "C" {
#endif

/** What this process holds. */
struct Usage {
    unsigned descriptors;
    unsigned threads;
    size_t heap;     /* bytes in use */
    size_t resident; /* bytes of memory */
};

struct Usage usage(void);

/** Prints why the run has failed, and ends the program. */
void fail(const char* format, ...) __attribute__((format(printf, 1, 2), noreturn));

/** Ends the program unless the process holds what it held, but for some bytes of the heap. */
void requireSame(struct Usage before, struct Usage after);

/** Seconds of CLOCK_MONOTONIC. */
double now(void);

/** An object in strict mode that is connected to the first adapter. */
VeltraSDK_Handle* connected(int32_t timeoutMs);

/** The adapter's string of an index, read before anything disturbs the program. */
struct Strings {
    char text[5][256];
};
struct Strings readStrings(VeltraSDK_Handle* handle);

/** Reads one of them again: the result; a wrong text ends the program. */
int16_t readAgain(VeltraSDK_Handle* handle, const struct Strings* strings, unsigned long round);

/* Each prints what came of it in one line, or ends the program. */
void runLives(unsigned long count);
void runNotifications(unsigned long count, unsigned long perSecond);
void runSignals(double seconds);
void runStops(unsigned long count);
void runDescriptors(unsigned long highest);
void runMemory(unsigned long highest);
void runThreads(unsigned long highest);

#ifdef __cplusplus
}
#endif

#endif
