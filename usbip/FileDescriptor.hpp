// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <unistd.h>

#include <utility>

namespace usbip {

/// Owns an open file descriptor.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : value(descriptor) {}
    ~FileDescriptor() { reset(); }
    FileDescriptor(FileDescriptor&& other) noexcept : value(std::exchange(other.value, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(value, other.value);
        other.reset();
        return *this;
    }

    [[nodiscard]] bool isOpen() const { return value >= 0; }
    [[nodiscard]] int get() const { return value; }

    void reset() {
        if (isOpen()) {
            close(std::exchange(value, -1));
        }
    }

private:
    int value = -1;
};

} // namespace usbip
