// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Confirmation.hpp"

#include "Failure.hpp"
#include "Hints.hpp"

#include <iostream>
#include <unistd.h>

namespace veltra {

void confirm(const Options& options, const std::string& consequence) {
    if (options.yes || options.dryRun) {
        return;
    }
    if (isatty(STDIN_FILENO) != 1 || isatty(STDERR_FILENO) != 1) {
        throw Failure(ExitStatus::CommandLine, "unconfirmed",
                      consequence + ", and nobody can be asked")
            .advise("If that is meant: " + typedWith(options, "-y", ""));
    }
    std::cerr << "veltra: " << consequence << ". Go on? [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "y" && answer != "Y" && answer != "yes") {
        throw Failure(ExitStatus::CommandLine, "unconfirmed", "nothing has been done");
    }
}

} // namespace veltra
