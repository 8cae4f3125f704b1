// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/Hidapi.hpp"

#include <cstddef>

namespace {

/// The process's; the mutex guards the rest.
struct State {
    std::mutex mutex;
    size_t users = 0;
    bool shared = false;
};

State& state() {
    static State only;
    return only;
}

} // namespace

Hidapi::Hidapi() {
    const Lock held = lock();
    const bool isFirst = ++state().users == 1;
    if (isFirst || !state().shared) {
        hid_init();
    }
}

Hidapi::~Hidapi() {
    const Lock held = lock();
    const bool isLast = --state().users == 0;
    if (isLast || !state().shared) {
        hid_exit();
    }
}

bool Hidapi::share() {
    const Lock held = lock();
    state().shared = state().shared || state().users == 0;
    return state().shared;
}

bool Hidapi::isShared() {
    const Lock held = lock();
    return state().shared;
}

Hidapi::Lock Hidapi::lock() {
    return Lock(state().mutex);
}

Hidapi::Devices Hidapi::enumerate(const Lock& /*held*/) {
    return Devices(hid_enumerate(0, 0));
}
