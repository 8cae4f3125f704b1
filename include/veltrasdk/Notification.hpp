// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * @brief The notification record as C++ sees it.
 */
#ifndef VELTRASDK_NOTIFICATION_HPP
#define VELTRASDK_NOTIFICATION_HPP

#include <veltrasdk/notification.h>

/**
 * @brief What the adapter sent of its own accord; valid, with all that it points to, only while
 * the handler runs.
 *
 * The record owns none of the bytes: a copy of it points to the same frame, which ends with the
 * handler. To keep a notification, copy the bytes.
 *
 * The accessors decode the frame into a view inside the record, which lives as long as the record
 * and must not be released. Each returns null, and writes nothing, when the notification is of
 * another kind or its frame is too short. They must not overlap on one record. The lengths that a
 * view announces are the adapter's word: read at most `size - 8` bytes behind a payload pointer.
 */
struct VELTRASDK_API Notification {
    /** What the notification tells. */
    NotificationKind kind{};
    /** The whole frame, from the transaction identifier on; not owned. */
    const uint8_t* data = nullptr;
    /** The number of bytes at `data`; 6 or more for a handler of VeltraSDK. */
    size_t size = 0;

    /**
     * @brief Decodes a notification of kind #NotificationKind_I3cHotJoin.
     * @return the joined target, in the record; null for another kind or a frame below 15 bytes.
     */
    I3cHotJoinData* i3cHotJoin() const;

    /**
     * @brief Decodes a notification of kind #NotificationKind_I3cIbi.
     * @return the in-band interrupt, in the record, whose payload points into `data`; null for
     *         another kind or a frame below 8 bytes.
     *
     * @warning The payload's length is the adapter's word: read at most `size - 8` bytes of it.
     */
    I3cIbiData* i3cIbi() const;

    /**
     * @brief Decodes a notification of kind #NotificationKind_Gpio.
     * @return the adapter's event byte, in the record; null for another kind or a frame below 7
     *         bytes.
     */
    GpioData* gpio() const;

    /**
     * @brief Decodes a notification of kind #NotificationKind_UartRx.
     * @return the received bytes, which lie in `data`, by a view in the record; null for another
     *         kind or a frame below 8 bytes.
     *
     * @warning The number of bytes is the adapter's word: read at most `size - 8` of them.
     */
    UartRxData* uartRx() const;

    /** @cond The views that the accessors fill; a new record has them all zero. */
    mutable I3cHotJoinData i3cHotJoinView{};
    mutable I3cIbiData i3cIbiView{};
    mutable GpioData gpioView{};
    mutable UartRxData uartRxView{};
    /** @endcond */
};

#endif
