/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* A user's program that takes any failure calmly: it says what came of each operation, and ends. */
#include <stdio.h>
#include <veltrasdk/veltrasdk.h>

int main(void) {
    VeltraSDK_Handle* handle = VeltraSDK_Create(500);
    if (VeltraSDK_Connect(handle, NULL)) {
        for (int attempt = 1; attempt <= 6; attempt++) {
            const int16_t result = VeltraSDK_GpioSetVoltage(handle, 3300, true);
            printf("attempt %d: 0x%04X\n", attempt, (unsigned)(uint16_t)result);
        }
    } else {
        printf("no adapter that may be opened\n");
    }
    VeltraSDK_Destroy(handle);
    return 0;
}
