// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <sys/types.h>

namespace capture {

/// A file that several processes append blocks to. Nothing here throws or takes memory, and no
/// signal of a failed write reaches the program.
class CaptureFile {
public:
    /// Makes the file where it is not there. Returns 0, or an error number. The descriptor closes
    /// on exec and lies high, where programs that count on the low numbers do not meet it.
    int open(const char* path);

    /// Appends by one write, between those of others. Returns 0 or an error number: EBADF when the
    /// program has closed the descriptor, whatever file has it now.
    [[nodiscard]] int append(const uint8_t* data, size_t size) const;

private:
    [[nodiscard]] bool isStillOpen() const;

    int descriptor = -1;
    dev_t device = 0;
    ino_t inode = 0;
};

} // namespace capture
