/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* A stand-in for hidapi with one adapter, which sends an event a millisecond from the first read
   on, whoever reads or not: a UART notification that carries its number and the time at which it
   was due. As in hidapi, 32 unread ones are kept and the oldest is dropped. bench/python_events.py
   loads it in front of the library. */
#include <hidapi.h>

#include <stdbool.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#define EXPORT __attribute__((visibility("default")))

enum {
    reportSize = 64,
    kept = 32,
    periodNanoseconds = 1000000,
    nanosecondsPerSecond = 1000000000,
};

struct hid_device_ {
    int64_t began; /* 0 before the first read */
    int64_t next;  /* the number of the next event that is read */
};

static struct hid_device_ device;
static wchar_t serialNumber[] = L"EVENTS";
static char path[] = "0-1:1.0";

static int64_t now(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (int64_t)time.tv_sec * nanosecondsPerSecond + time.tv_nsec;
}

static int64_t dueAt(int64_t number) {
    return device.began + (number + 1) * periodNanoseconds;
}

static void waitUntil(int64_t time) {
    const struct timespec until = {time / nanosecondsPerSecond, time % nanosecondsPerSecond};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, NULL) != 0) {
    }
}

EXPORT int hid_init(void) {
    return 0;
}

EXPORT int hid_exit(void) {
    return 0;
}

EXPORT struct hid_device_info* hid_enumerate(unsigned short vendor, unsigned short product) {
    (void)vendor;
    (void)product;
    struct hid_device_info* info = calloc(1, sizeof *info);
    if (info != NULL) {
        info->vendor_id = 0x1209;
        info->product_id = 0x0001;
        info->path = path;
        info->serial_number = serialNumber;
        info->manufacturer_string = serialNumber;
        info->product_string = serialNumber;
    }
    return info;
}

EXPORT void hid_free_enumeration(struct hid_device_info* info) {
    free(info);
}

EXPORT hid_device* hid_open_path(const char* wanted) {
    memset(&device, 0, sizeof device);
    return strcmp(wanted, path) == 0 ? &device : NULL;
}

EXPORT void hid_close(hid_device* closed) {
    (void)closed;
}

EXPORT int hid_write(hid_device* to, const unsigned char* data, size_t length) {
    (void)to;
    (void)data;
    return (int)length;
}

EXPORT int hid_read_timeout(hid_device* from, unsigned char* data, size_t length,
                            int milliseconds) {
    const int64_t called = now();
    if (from->began == 0) {
        from->began = called;
    }
    const int64_t sent = (called - from->began) / periodNanoseconds;
    if (sent - from->next > kept) {
        from->next = sent - kept;
    }
    const int64_t due = dueAt(from->next);
    const int64_t limit = called + (int64_t)milliseconds * 1000000;
    if (milliseconds >= 0 && due > limit) {
        waitUntil(limit);
        return 0;
    }
    waitUntil(due);
    /* Header of a packet that is first and last, a frame of 24 bytes: identifier 0, code 0x1081,
       two bytes that are not used, the count, the event's number and the time at which it was due.
     */
    const uint8_t head[] = {24 << 2 | 3, 0, 0, 0, 0x81, 0x10, 0, 0, 16, 0};
    const int64_t payload[] = {from->next, due};
    memset(data, 0, length);
    memcpy(data, head, sizeof head);
    memcpy(data + sizeof head, payload, sizeof payload);
    ++from->next;
    return reportSize;
}
