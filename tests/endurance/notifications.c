/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

#include "support.h"

#include <poll.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

static const int patientMs = 60000;

struct Sending {
    VeltraSDK_Handle* handle;
    unsigned long count;
    unsigned long perSecond;
};

/* What is sent over the UART comes back as a notification: a number, one higher each time. */
static void* sendNumbers(void* argument) {
    const struct Sending* const sending = argument;
    struct timespec next;
    clock_gettime(CLOCK_MONOTONIC, &next);
    for (uint32_t number = 0; number < sending->count; ++number) {
        uint8_t message[sizeof number];
        memcpy(message, &number, sizeof number);
        const int16_t result = VeltraSDK_UartSendMessage(sending->handle, message, sizeof message);
        if (result != 0) {
            fail("message %u was not sent: 0x%04X", number, (unsigned)(uint16_t)result);
        }
        next.tv_nsec += (long)(1000000000 / sending->perSecond);
        next.tv_sec += next.tv_nsec / 1000000000;
        next.tv_nsec %= 1000000000;
        clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, NULL);
    }
    return NULL;
}

static void receiveNumber(VeltraSDK_Handle* handle, int descriptor, uint32_t expected) {
    VeltraSDK_QueuedNotification entry;
    uint8_t frame[256];
    struct pollfd waiting = {.fd = descriptor, .events = POLLIN};
    if (poll(&waiting, 1, patientMs) <= 0 ||
        !VeltraSDK_TakeNotification(handle, &entry, frame, sizeof frame)) {
        fail("notification %u did not come", expected);
    }
    const Notification notification = VeltraSDK_notificationFromQueue(&entry, frame, sizeof frame);
    UartRxData received;
    uint32_t number = 0;
    if (entry.lostBefore != 0) {
        fail("the queue lost %lu in front of notification %u", (unsigned long)entry.lostBefore,
             expected);
    }
    if (!VeltraSDK_notificationAsUartRx(&notification, &received) ||
        received.length != sizeof number) {
        fail("notification %u is another one", expected);
    }
    memcpy(&number, received.data, sizeof number);
    if (number != expected) {
        fail("notification %u came in the place of %u", number, expected);
    }
}

void runNotifications(unsigned long count, unsigned long perSecond) {
    struct Sending sending = {connected(patientMs), count, perSecond};
    const int descriptor = VeltraSDK_OpenNotificationQueue(sending.handle, 65536);
    if (descriptor < 0 || VeltraSDK_UartSetBusVoltage(sending.handle, 3300, true) != 0 ||
        VeltraSDK_UartInit(sending.handle, UartBaudRate_115200, UartHwHandshake_None,
                           UartParity_None, UartDataSize_8Bits, UartStopBit_1) != 0) {
        fail("the UART cannot be set up");
    }
    pthread_t sender;
    if (pthread_create(&sender, NULL, sendNumbers, &sending) != 0) {
        fail("no thread can be started");
    }
    receiveNumber(sending.handle, descriptor, 0);
    const struct Usage before = usage();
    const double began = now();
    for (uint32_t number = 1; number + 1 < count; ++number) {
        receiveNumber(sending.handle, descriptor, number);
    }
    const double seconds = now() - began;
    const struct Usage after = usage();
    receiveNumber(sending.handle, descriptor, (uint32_t)count - 1);
    pthread_join(sender, NULL);
    requireSame(before, after);
    VeltraSDK_Destroy(sending.handle);
    printf("%.0f s, %.0f a second|%lu sent, 0 lost, all in order; %u descriptors, %u threads, %zu "
           "and %zu kB resident\n",
           seconds, (double)(count - 2) / seconds, count, after.descriptors, after.threads,
           before.resident / 1024, after.resident / 1024);
}
