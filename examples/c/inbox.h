/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* Where the C examples keep notifications until main() asks for them: they arrive on a thread of
   the library's own, and are valid only while the callback runs. */
#ifndef INBOX_H
#define INBOX_H

#include <pthread.h>
#include <string.h>
#include <time.h>

#include <veltrasdk/veltrasdk.h>

enum { InboxCapacity = 16, SecondsToWait = 30 };

typedef struct {
    Notification notification;
    uint8_t frame[256];
} InboxItem;

static struct {
    pthread_mutex_t mutex;
    pthread_cond_t arrived;
    InboxItem items[InboxCapacity];
    size_t arrivedCount;
    size_t takenCount;
} inbox = {.mutex = PTHREAD_MUTEX_INITIALIZER, .arrived = PTHREAD_COND_INITIALIZER};

/* The callback for VeltraSDK_onNotification(): copies the notification, and returns. */
static inline void putIntoInbox(const Notification* notification) {
    pthread_mutex_lock(&inbox.mutex);
    if (inbox.arrivedCount - inbox.takenCount < InboxCapacity) {
        InboxItem* item = &inbox.items[inbox.arrivedCount++ % InboxCapacity];
        item->notification = *notification;
        memcpy(item->frame, notification->data, notification->size);
    }
    pthread_cond_signal(&inbox.arrived);
    pthread_mutex_unlock(&inbox.mutex);
}

/* Waits for the next notification of the kind, passing over others; false when none comes. */
static inline bool takeFromInbox(NotificationKind kind, InboxItem* taken) {
    struct timespec limit;
    timespec_get(&limit, TIME_UTC);
    limit.tv_sec += SecondsToWait;
    bool found = false;
    bool timedOut = false;
    pthread_mutex_lock(&inbox.mutex);
    while (!found && !timedOut) {
        if (inbox.takenCount != inbox.arrivedCount) {
            *taken = inbox.items[inbox.takenCount++ % InboxCapacity];
            taken->notification.data = taken->frame;
            found = taken->notification.kind == kind;
        } else {
            timedOut = pthread_cond_timedwait(&inbox.arrived, &inbox.mutex, &limit) != 0;
        }
    }
    pthread_mutex_unlock(&inbox.mutex);
    return found;
}

#endif
