// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>

namespace test_support {

/// While it exists, decides how the process starts threads: @p behaviour is called instead of
/// pthread_create, may call its argument to start the thread, and returns an error number or 0.
class ThreadStart {
public:
    using Behaviour = std::function<int(const std::function<int()>& start)>;

    explicit ThreadStart(Behaviour behaviour);
    ~ThreadStart();
    ThreadStart(const ThreadStart&) = delete;
    ThreadStart& operator=(const ThreadStart&) = delete;
};

} // namespace test_support
