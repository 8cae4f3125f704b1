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
 * The accessors decode the frame into a view inside the record. Each returns null, and decodes
 * nothing, when the notification is of another kind or its frame is too short. The lengths that a
 * view announces are the adapter's word: read at most `size - 8` bytes behind a payload pointer.
 */
struct VELTRASDK_API Notification {
    /** What the notification tells. */
    NotificationKind kind{};
    /** The whole frame, from the transaction identifier on; not owned. */
    const uint8_t* data = nullptr;
    /** The number of bytes at `data`. */
    size_t size = 0;

    /** @return the joined target, or null; needs a frame of 15 bytes. */
    I3cHotJoinData* i3cHotJoin() const;
    /** @return the in-band interrupt, or null; needs a frame of 8 bytes. */
    I3cIbiData* i3cIbi() const;
    /** @return the GPIO event, or null; needs a frame of 7 bytes. */
    GpioData* gpio() const;
    /** @return the received bytes, or null; needs a frame of 8 bytes. */
    UartRxData* uartRx() const;

    /** @cond The views that the accessors fill; a new record has them all zero. */
    mutable I3cHotJoinData i3cHotJoinView{};
    mutable I3cIbiData i3cIbiView{};
    mutable GpioData gpioView{};
    mutable UartRxData uartRxView{};
    /** @endcond */
};

#endif
