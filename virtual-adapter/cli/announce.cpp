// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/announce.hpp"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>

namespace virtual_adapter {

void announce(const std::string& line) {
    // A reader that has gone would end the process without a word.
    (void)std::signal(SIGPIPE, SIG_IGN);
    if (std::puts(line.c_str()) < 0 || std::fflush(stdout) != 0) {
        throw std::system_error(errno, std::generic_category(),
                                "nobody would know of the adapter: cannot write \"" + line + "\"");
    }
}

} // namespace virtual_adapter
