/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief What is known of an adapter that is plugged in, without connecting to it.
 */
#ifndef VELTRASDK_ADAPTERS_H
#define VELTRASDK_ADAPTERS_H

#include <stdbool.h>
#include <stdint.h>

/** An adapter that is plugged in, as VeltraSDK_Enumerate() finds it. */
typedef struct VeltraSDK_AdapterInfo {
    /** The HID device path, with a NUL behind it. Another port has another path. */
    char path[64];
    /** The USB serial number in UTF-8, with a NUL behind it; empty when there is none or it cannot
     * be read. */
    char serialNumber[512];
    /** The bytes of one report: 64 at full speed, 1024 at high speed. */
    uint16_t reportSize;
    /** Whether its strings could be read. False where there is no write permission on its device
     * node: connecting to it fails. */
    bool accessible;
} VeltraSDK_AdapterInfo;

#endif
