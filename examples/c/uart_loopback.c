/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* Sends a message over the UART, whose transmit line is wired to its receive line, and prints what
   comes back. */
#include "example.h"
#include "inbox.h"

static const char message[] = "The quick brown fox jumps over the lazy dog, out of the adapter and "
                              "back into it.";

static bool setUp(VeltraSDK_Handle* handle) {
    return succeeded("Setting the voltage", VeltraSDK_UartSetBusVoltage(handle, 3300, true)) &&
           succeeded("Initialising the UART",
                     VeltraSDK_UartInit(handle, UartBaudRate_115200, UartHwHandshake_None,
                                        UartParity_None, UartDataSize_8Bits, UartStopBit_1));
}

/* Received bytes come in as many notifications as the adapter likes. */
static bool receive(size_t length) {
    InboxItem item;
    UartRxData received;
    printf("Received: ");
    while (length > 0 && takeFromInbox(NotificationKind_UartRx, &item) &&
           VeltraSDK_notificationAsUartRx(&item.notification, &received)) {
        for (size_t i = 0; i < received.length && i < item.notification.size - 8 && length > 0;
             ++i, --length) {
            putchar(received.data[i]);
        }
    }
    putchar('\n');
    if (length > 0) {
        fprintf(stderr, "%zu bytes did not come back.\n", length);
    }
    return length == 0;
}

static bool talk(VeltraSDK_Handle* handle) {
    const uint16_t length = sizeof(message) - 1;
    printf("Sending:  %s\n", message);
    return succeeded("Sending",
                     VeltraSDK_UartSendMessage(handle, (const uint8_t*)message, length)) &&
           receive(length);
}

int main(void) {
    VeltraSDK_Handle* handle = VeltraSDK_Create(1000);
    VeltraSDK_onNotification(handle, putIntoInbox); /* before connecting */
    const bool done = connectOrExplain(handle) && setUp(handle) && talk(handle);
    VeltraSDK_Destroy(handle);
    return done ? 0 : 1;
}
