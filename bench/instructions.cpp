// Runs a number of small operations, for callgrind to count: `instructions library|raw COUNT`.
#include <veltrasdk/VeltraSDK.hpp>

#include <array>
#include <cstdlib>
#include <cstring>

#include <hidapi.h>

namespace {

bool runLibrary(long count) {
    VeltraSDK sdk(-1);
    std::vector<uint8_t> text;
    bool good = sdk.connect("");
    for (long i = 0; good && i < count; ++i) {
        good = sdk.getUsbString(text, 1) == 0;
    }
    return good;
}

/// The same conversation, with nothing around it.
bool runRaw(long count) {
    hid_device* const device = hid_open_path("1-1:1.0");
    std::array<uint8_t, 65> report{0, 0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0x01};
    std::array<uint8_t, 64> response{};
    bool good = true;
    for (long i = 0; good && i < count; ++i) {
        good = hid_write(device, report.data(), report.size()) > 0 &&
               hid_read_timeout(device, response.data(), response.size(), 100) > 0;
    }
    hid_close(device);
    return good;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    const long count = std::strtol(argv[2], nullptr, 10);
    const bool good = std::strcmp(argv[1], "raw") == 0 ? runRaw(count) : runLibrary(count);
    return good ? 0 : 1;
}
