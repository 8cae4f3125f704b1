/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* Prints the library's version and the adapter's five identity strings. */
#include "example.h"

int main(void) {
    printf("libveltrasdk %s\n", VeltraSDK_GetVersion());

    VeltraSDK_Handle* handle = VeltraSDK_Create(1000);
    char texts[5][255]; /* room for the longest string and its NUL */
    bool read = connectOrExplain(handle);
    for (uint8_t i = 0; read && i < 5; ++i) {
        read = succeeded("Reading a string", VeltraSDK_GetUsbString(handle, (uint8_t)(i + 1),
                                                                    texts[i], sizeof texts[i]));
    }
    if (read) {
        puts("Adapter:");
        for (int i = 0; i < 5; ++i) {
            printf("  string %d: %s\n", i + 1, texts[i]);
        }
    }
    VeltraSDK_Destroy(handle);
    return read ? 0 : 1;
}
