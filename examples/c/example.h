/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* What the C examples share: connecting, and saying what to do when that fails. */
#ifndef EXAMPLE_H
#define EXAMPLE_H

#include <stdio.h>

#include <veltrasdk/veltrasdk.h>

/* Connects to the first adapter in strict mode, or explains and returns false. The other mode,
   which a handle begins in, takes the next response for the answer, whatever it answers: it is for
   programs that were written for that. */
static inline bool connectOrExplain(VeltraSDK_Handle* handle) {
    VeltraSDK_SetStrict(handle, true);
    if (VeltraSDK_Connect(handle, NULL)) {
        return true;
    }
    fputs("No adapter found, or it cannot be opened.\n"
          "  - Is it plugged in? `lsusb` should list it.\n"
          "  - May you open it? Install the udev rule (see the README), then replug.\n"
          "  - No hardware at hand? Run this under `veltra-virtual-adapter run -- ...`.\n",
          stderr);
    return false;
}

/* Prints what failed and with which result code; returns whether the result is success. */
static inline bool succeeded(const char* operation, int16_t result) {
    if (result != ResultCode_Success) {
        fprintf(stderr, "%s failed with 0x%04X\n", operation, (unsigned)(uint16_t)result);
    }
    return result == ResultCode_Success;
}

#endif
