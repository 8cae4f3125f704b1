#include "driver/Hidapi.hpp"

#include <cstddef>

namespace {

std::mutex hidapiMutex;
// Guarded by it.
size_t users = 0;
bool shared = false;

} // namespace

Hidapi::Hidapi() {
    const Lock held = lock();
    const bool isFirst = ++users == 1;
    if (isFirst || !shared) {
        hid_init();
    }
}

Hidapi::~Hidapi() {
    const Lock held = lock();
    const bool isLast = --users == 0;
    if (isLast || !shared) {
        hid_exit();
    }
}

bool Hidapi::share() {
    const Lock held = lock();
    shared = shared || users == 0;
    return shared;
}

bool Hidapi::isShared() {
    const Lock held = lock();
    return shared;
}

Hidapi::Lock Hidapi::lock() {
    return Lock(hidapiMutex);
}

Hidapi::Devices Hidapi::enumerate(const Lock& /*held*/) {
    return Devices(hid_enumerate(0, 0));
}
