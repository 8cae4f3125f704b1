/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief What the adapter sends of its own accord.
 */
#ifndef VELTRASDK_NOTIFICATION_H
#define VELTRASDK_NOTIFICATION_H

#include <stddef.h>

#include <veltrasdk/declarations.h>

/** What a notification tells. */
VELTRASDK_ENUM(NotificationKind, uint32_t){
    NotificationKind_I3cHotJoin = 0, /**< An I3C target joined the bus. */
    NotificationKind_I3cIbi = 1,     /**< An I3C target raised an in-band interrupt. */
    NotificationKind_Gpio = 2,       /**< A GPIO interrupt fired. */
    NotificationKind_UartRx = 3,     /**< The UART received bytes. */
    NotificationKind_Unknown = 4,    /**< A code that this library does not know. */
};

/** An I3C target that joined the bus. */
typedef struct I3cHotJoinData {
    /** The target's 48-bit provisioned identifier, most significant byte first. */
    uint8_t pid[6];
    /** The bus and the device characteristics register, in that order. */
    uint8_t bcrDcr[2];
    /** The dynamic address that the target was given, 7 bits. */
    uint8_t dynamicAddress;
} I3cHotJoinData;

/**
 * An in-band interrupt.
 *
 * @warning The length is the adapter's word and is not compared with the notification's
 * size. Stay inside: read at most `notification.size - 8` bytes.
 */
typedef struct I3cIbiData {
    /** The address of the interrupting target, 7 bits. */
    uint8_t address;
    /** The payload; it points into the notification's data and is valid as long as that. */
    const uint8_t* payload;
    /** The number of payload bytes that the adapter announces. */
    size_t payloadLength;
} I3cIbiData;

/** A GPIO interrupt. */
typedef struct GpioData {
    /** The adapter's event byte, passed on unchanged. */
    uint8_t value;
} GpioData;

/**
 * Bytes that the UART received.
 *
 * @warning The length is the adapter's word and is not compared with the notification's size.
 * Stay inside: read at most `notification.size - 8` bytes.
 */
typedef struct UartRxData {
    /** The bytes; they lie in the notification's data and are valid as long as that. */
    const uint8_t* data;
    /** The number of bytes that the adapter announces. */
    size_t length;
} UartRxData;

#ifdef __cplusplus
/* C++ programs find the record's definition in <veltrasdk/Notification.hpp>: it is the same record,
   with member functions that decode it. */
struct Notification;
#else
/**
 * A notification; valid, with all that it points to, only while the callback runs. A copy of the
 * record may be kept: point its `data` at a copy of the frame.
 */
typedef struct Notification {
    /** What the notification tells. */
    NotificationKind kind;
    /** The whole frame, from the transaction identifier on; not owned. */
    const uint8_t* data;
    /** The number of bytes at `data`. */
    size_t size;
    /** Reserved for the library. */
    I3cHotJoinData i3cHotJoinView;
    /** Reserved for the library. */
    I3cIbiData i3cIbiView;
    /** Reserved for the library. */
    GpioData gpioView;
    /** Reserved for the library. */
    UartRxData uartRxView;
} Notification;
#endif

#endif
