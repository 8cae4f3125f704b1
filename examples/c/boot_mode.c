/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* Sends the adapter into its boot mode, where it waits for new firmware. */
#include "example.h"

int main(void) {
    VeltraSDK_Handle* handle = VeltraSDK_Create(1000);
    const bool sent =
        connectOrExplain(handle) && succeeded("Boot mode", VeltraSDK_EnterBootMode(handle));
    if (sent) {
        puts("The adapter has left its application firmware; the link is closed.");
    }
    VeltraSDK_Destroy(handle);
    return sent ? 0 : 1;
}
