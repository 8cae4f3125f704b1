// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Prints the library's version and the adapter's five identity strings.
#include "example.hpp"

#include <veltrasdk/veltrasdk.h>

int main() {
    std::cout << "libveltrasdk " << VeltraSDK_GetVersion() << '\n';

    VeltraSDK sdk(1000);
    VeltraSDK::DeviceInfo info;
    if (!connectOrExplain(sdk) || !succeeded("Reading the strings", sdk.getDeviceInfo(info))) {
        return 1;
    }
    std::cout << "Adapter:\n"
              << "  string 1: " << info.usbString1 << '\n'
              << "  string 2: " << info.usbString2 << '\n'
              << "  string 3: " << info.usbString3 << '\n'
              << "  string 4: " << info.usbString4 << '\n'
              << "  string 5: " << info.usbString5 << '\n';
    return 0;
}
