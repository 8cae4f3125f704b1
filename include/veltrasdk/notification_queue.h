/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief Notifications that are waited for, in place of a callback.
 */
#ifndef VELTRASDK_NOTIFICATION_QUEUE_H
#define VELTRASDK_NOTIFICATION_QUEUE_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include <veltrasdk/declarations.h>
#include <veltrasdk/notification.h>
#ifdef __cplusplus
#include <veltrasdk/Notification.hpp>
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** What a queue tells of an entry beside its frame. */
typedef struct VeltraSDK_QueuedNotification {
    /** When its last report was read, in ns of CLOCK_MONOTONIC. */
    uint64_t timeNanoseconds;
    /** How many notifications were lost between the entry before and this one. */
    uint64_t lostBefore;
    /** What it tells; #NotificationKind_Unknown for the end of the link. */
    NotificationKind kind;
    /** The bytes of the whole frame, 6 or more; 0 for the end of the link, which has none. */
    uint32_t frameSize;
} VeltraSDK_QueuedNotification;

/**
 * @brief Opens the handle's notification queue: from now on every notification is kept in it, whole
 * and with the time at which it came, until it is taken.
 *
 * The notification callback, if one is installed, is called beside it. When there is no room for a
 * notification it is lost, and counted in the next entry. The end of the link is an entry too, for
 * which room is kept: VeltraSDK_Disconnect(), VeltraSDK_EnterBootMode(), and the first read that
 * fails, as after an unplug, which is entered at once when the queue is opened behind it. Ends with
 * no other entry between them are one.
 *
 * Opening, VeltraSDK_TakeNotification() and destroying the handle must not overlap.
 *
 * @param handle the handle, connected or not. Open the queue before connecting to miss nothing.
 * @param bytes the queue's memory, 54 to 1,073,741,824: each entry takes 24 bytes beside its frame,
 *              and 24 are kept for the end of the link. All of it is taken now; filling the queue
 *              allocates nothing.
 * @return a descriptor that is readable exactly while an entry waits, and for good once the queue
 *         is closed: for poll, select and epoll. It is the library's, non-blocking and
 *         close-on-exec: do not read, write or close it. It is valid until the next
 *         VeltraSDK_OpenNotificationQueue() that finds the queue closed, or until the handle is
 *         destroyed. -1 for a null handle, when the queue is open already, when @p bytes is out of
 *         range, and when there is no memory or descriptor left for it.
 */
VELTRASDK_API int VeltraSDK_OpenNotificationQueue(VeltraSDK_Handle* handle, size_t bytes);

/**
 * @brief Takes the oldest entry out of the handle's notification queue; does not wait.
 *
 * It may run in any thread, one at a time, also while other calls on the handle run, except
 * VeltraSDK_OpenNotificationQueue() and VeltraSDK_Destroy().
 *
 * @param handle the handle.
 * @param[out] notification receives what the queue tells of the entry. Must not be null.
 * @param[out] frame receives the frame, from the transaction identifier on, cut to @p capacity;
 *                   bytes behind it are left as they were. Must not be null when @p capacity is not
 *                   0.
 * @param capacity the bytes at @p frame.
 * @return whether an entry was taken; false, with nothing written, when none waits, the queue is
 *         closed or the handle is null.
 */
VELTRASDK_API bool VeltraSDK_TakeNotification(VeltraSDK_Handle* handle,
                                              VeltraSDK_QueuedNotification* notification,
                                              uint8_t* frame, size_t capacity);

/**
 * @brief Closes the handle's notification queue; destroying the handle does it too.
 *
 * What waits in it is dropped. It may run in any thread, also while another one polls the
 * descriptor, which becomes readable, or takes. The descriptor stays open until the next
 * VeltraSDK_OpenNotificationQueue() or until the handle is destroyed, so that nobody polls a file
 * that has taken its number. On a closed queue nothing happens.
 *
 * @param handle the handle; null does nothing.
 */
VELTRASDK_API void VeltraSDK_CloseNotificationQueue(VeltraSDK_Handle* handle);

/**
 * @brief Makes of an entry that was taken the record that the accessors decode, such as
 * VeltraSDK_notificationAsGpio().
 * @param notification what the queue told of the entry.
 * @param frame its frame, as VeltraSDK_TakeNotification() stored it: the record points to it.
 * @param capacity the bytes at @p frame.
 * @return the record, of as many bytes as were stored, which may be more than 256; no accessor
 *         takes that of the end of the link.
 */
static inline Notification
VeltraSDK_notificationFromQueue(const VeltraSDK_QueuedNotification* notification,
                                const uint8_t* frame, size_t capacity) {
#ifdef __cplusplus
    Notification record;
#else
    Notification record = {0};
#endif
    record.kind = notification->kind;
    record.data = frame;
    record.size = notification->frameSize < capacity ? notification->frameSize : capacity;
    return record;
}

#ifdef __cplusplus
}
#endif

#endif
