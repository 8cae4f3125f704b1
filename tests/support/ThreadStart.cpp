// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/ThreadStart.hpp"

#include <dlfcn.h>
#include <pthread.h>
#include <utility>

namespace test_support {

namespace {

ThreadStart::Behaviour current;

} // namespace

ThreadStart::ThreadStart(Behaviour behaviour) {
    current = std::move(behaviour);
}

ThreadStart::~ThreadStart() {
    current = nullptr;
}

} // namespace test_support

// Visible, so that it stands in front of the C library's own, also for the C++ runtime.
#pragma GCC visibility push(default)
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*routine)(void*), void* argument) {
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const auto next = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    const auto start = [&] { return next(thread, attributes, routine, argument); };
    return test_support::current ? test_support::current(start) : start();
}
#pragma GCC visibility pop
