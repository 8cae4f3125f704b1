// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Sends a message over the UART, whose transmit line is wired to its receive line, and prints what
// comes back.
#include "example.hpp"
#include "inbox.hpp"

#include <algorithm>
#include <string>

namespace {

const std::string message = "The quick brown fox jumps over the lazy dog, out of the adapter and "
                            "back into it.";

bool setUp(VeltraSDK& sdk) {
    return succeeded("Setting the voltage", sdk.uartSetBusVoltage(3300, true)) &&
           succeeded("Initialising the UART",
                     sdk.uartInit(UartBaudRate_115200, UartHwHandshake_None, UartParity_None,
                                  UartDataSize_8Bits, UartStopBit_1));
}

/// Received bytes come in as many notifications as the adapter likes.
std::string receive(Inbox& inbox, size_t length) {
    std::string text;
    while (text.size() < length) {
        const auto item = inbox.take(NotificationKind_UartRx);
        const auto notification = item ? item->notification() : Notification{};
        const UartRxData* const received = notification.uartRx();
        if (received == nullptr) {
            break;
        }
        text.append(received->data,
                    received->data + std::min(received->length, notification.size - 8));
    }
    return text;
}

bool talk(VeltraSDK& sdk, Inbox& inbox) {
    std::cout << "Sending:  " << message << '\n';
    if (!succeeded("Sending", sdk.uartSendMessage({message.begin(), message.end()}))) {
        return false;
    }
    const std::string text = receive(inbox, message.size());
    std::cout << "Received: " << text << '\n';
    if (text.size() < message.size()) {
        std::cerr << message.size() - text.size() << " bytes did not come back.\n";
    }
    return text.size() == message.size();
}

} // namespace

int main() {
    Inbox inbox;
    VeltraSDK sdk(1000);
    // Before connecting.
    sdk.onNotification([&inbox](const Notification& notification) { inbox.put(notification); });
    return connectOrExplain(sdk) && setUp(sdk) && talk(sdk, inbox) ? 0 : 1;
}
