/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

#include "support.h"

#include <dirent.h>
#include <malloc.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

/* What the C library keeps for itself may differ a little from one moment to the next; a leak of
   two bytes a life would be more than this after 10,000. */
static const size_t heapTolerance = 16384;

static unsigned entries(const char* directory) {
    unsigned count = 0;
    DIR* const list = opendir(directory);
    if (list == NULL) {
        fail("cannot read %s", directory);
    }
    for (const struct dirent* entry = readdir(list); entry != NULL; entry = readdir(list)) {
        count += entry->d_name[0] != '.';
    }
    closedir(list);
    return count;
}

struct Usage usage(void) {
    struct Usage held = {0};
    size_t pages = 0;
    FILE* const memory = fopen("/proc/self/statm", "r");
    if (memory == NULL || fscanf(memory, "%*u %zu", &pages) != 1) {
        fail("cannot read /proc/self/statm");
    }
    (void)fclose(memory);
    held.descriptors = entries("/proc/self/fd") - 1; /* without that of the list */
    held.threads = entries("/proc/self/task");
    held.heap = mallinfo2().uordblks;
    held.resident = pages * (size_t)sysconf(_SC_PAGESIZE);
    return held;
}

void fail(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    (void)fputs("endurance: ", stderr);
    (void)vfprintf(stderr, format, arguments);
    (void)fputc('\n', stderr);
    va_end(arguments);
    exit(1);
}

void requireSame(struct Usage before, struct Usage after) {
    if (after.descriptors != before.descriptors) {
        fail("%u descriptors became %u", before.descriptors, after.descriptors);
    }
    if (after.threads != before.threads) {
        fail("%u threads became %u", before.threads, after.threads);
    }
    if (after.heap > before.heap + heapTolerance) {
        fail("%zu bytes of the heap became %zu", before.heap, after.heap);
    }
}

double now(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

VeltraSDK_Handle* connected(int32_t timeoutMs) {
    VeltraSDK_Handle* const handle = VeltraSDK_Create(timeoutMs);
    VeltraSDK_SetStrict(handle, true);
    if (!VeltraSDK_Connect(handle, NULL)) {
        fail("no adapter can be connected");
    }
    return handle;
}

struct Strings readStrings(VeltraSDK_Handle* handle) {
    struct Strings strings;
    for (uint8_t i = 0; i < 5; ++i) {
        const int16_t result = VeltraSDK_GetUsbString(handle, (uint8_t)(i + 1), strings.text[i],
                                                      sizeof strings.text[i]);
        if (result != 0) {
            fail("string %d cannot be read: 0x%04X", i + 1, (unsigned)(uint16_t)result);
        }
    }
    return strings;
}

int16_t readAgain(VeltraSDK_Handle* handle, const struct Strings* strings, unsigned long round) {
    char text[256];
    const unsigned long i = round % 5;
    const int16_t result = VeltraSDK_GetUsbString(handle, (uint8_t)(i + 1), text, sizeof text);
    if (result == 0 && strcmp(text, strings->text[i]) != 0) {
        fail("operation %lu got another one's answer: '%s' for '%s'", round, text,
             strings->text[i]);
    }
    return result;
}
