// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * @brief Notifications that are waited for, in place of a handler.
 */
#ifndef VELTRASDK_NOTIFICATIONQUEUE_HPP
#define VELTRASDK_NOTIFICATIONQUEUE_HPP

#include <veltrasdk/Notification.hpp>
#include <veltrasdk/declarations.h>
#include <veltrasdk/notification_queue.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class VeltraSDK;

/**
 * @brief Keeps the notifications of one VeltraSDK, whole and with the time at which each came,
 * until they are taken.
 *
 * The notification handler, if one is installed, is called beside it. When there is no room for a
 * notification it is lost, and counted in the next entry. The end of the link is an entry too, for
 * which room is kept: VeltraSDK::disconnect(), VeltraSDK::enterBootMode(), the destruction of the
 * object, and the first read that fails, as after an unplug, which is entered at once when the
 * queue is opened behind it. Ends with no other entry between them are one.
 *
 * An object has one open queue at a time. The queue may outlive it.
 *
 * @par Threads
 * Entries may be taken in any thread, one at a time, while operations on the object run. close()
 * may run while another thread polls or takes. Nobody may use the queue any more when its
 * destructor begins.
 */
class VELTRASDK_API NotificationQueue {
public:
    /** @brief What is taken from a queue. */
    struct Entry {
        /** When its last report was read, in ns of CLOCK_MONOTONIC. */
        uint64_t timeNanoseconds = 0;
        /** How many notifications were lost between the entry before and this one. */
        uint64_t lostBefore = 0;
        /** What it tells; #NotificationKind_Unknown for the end of the link. */
        NotificationKind kind = NotificationKind_Unknown;
        /** The whole frame, 6 bytes or more; empty for the end of the link, which has none. */
        std::vector<uint8_t> frame;

        /**
         * @brief Tells the end of the link from notifications.
         * @return whether the link has ended.
         */
        [[nodiscard]] bool isEndOfLink() const { return frame.empty(); }

        /**
         * @brief Makes the record whose accessors decode the entry, such as Notification::gpio().
         * @return the record, which points to the entry's frame; no accessor takes that of the end
         *         of the link.
         */
        [[nodiscard]] Notification notification() const {
            Notification record;
            record.kind = kind;
            record.data = frame.data();
            record.size = frame.size();
            return record;
        }
    };

    /**
     * @brief Opens a queue; descriptor() tells whether it is open.
     * @param sdk whose notifications it keeps, connected or not. Open the queue before connecting
     *            to miss nothing.
     * @param bytes the queue's memory, 54 to 1,073,741,824: each entry takes 24 bytes beside its
     *              frame, and 24 are kept for the end of the link. All of it is taken now; filling
     *              the queue allocates nothing.
     */
    NotificationQueue(VeltraSDK& sdk, size_t bytes);

    /** @brief Closes the queue and its descriptor. */
    ~NotificationQueue();

    NotificationQueue(const NotificationQueue&) = delete;
    NotificationQueue& operator=(const NotificationQueue&) = delete;

    /**
     * @brief Tells what to wait for.
     * @return a descriptor that is readable exactly while an entry waits, and for good once the
     *         queue is closed: for poll, select and epoll. It is the library's, non-blocking and
     *         close-on-exec: do not read, write or close it. It is valid until the queue is
     *         destroyed. -1 when another queue of the object was open, when its size is out of
     *         range, and when there was no memory or descriptor left for it.
     */
    [[nodiscard]] int descriptor() const { return eventDescriptor; }

    /**
     * @brief Takes the oldest entry; does not wait.
     * @param[out] entry replaced by the entry; left as it was when none is taken.
     * @return whether an entry was taken; false when none waits or the queue is closed.
     */
    bool take(Entry& entry);

    /**
     * @brief Takes the oldest entry into the caller's memory; does not wait and allocates nothing.
     * @param[out] notification receives what the queue tells of the entry.
     * @param[out] frame receives the frame, from the transaction identifier on, cut to @p capacity;
     *                   bytes behind it are left as they were.
     * @param capacity the bytes at @p frame.
     * @return whether an entry was taken; false, with nothing written, when none waits or the queue
     *         is closed.
     */
    bool take(VeltraSDK_QueuedNotification& notification, uint8_t* frame, size_t capacity);

    /**
     * @brief Tells whether the queue still keeps notifications.
     * @return false once it is closed, and when it could not be opened.
     */
    [[nodiscard]] bool isOpen() const;

    /**
     * @brief Closes the queue: what waits in it is dropped, and another one may be opened.
     *
     * The descriptor becomes readable, which ends the wait of whoever polls it.
     */
    void close();

private:
    friend class VeltraSDK;
    class State;

    std::shared_ptr<State> state;
    int eventDescriptor;
};

#endif
