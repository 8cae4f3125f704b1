// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Sends the adapter into its boot mode, where it waits for new firmware.
#include "example.hpp"

int main() {
    VeltraSDK sdk(1000);
    if (!connectOrExplain(sdk) || !succeeded("Boot mode", sdk.enterBootMode())) {
        return 1;
    }
    std::cout << "The adapter has left its application firmware; the link is closed.\n";
    return 0;
}
