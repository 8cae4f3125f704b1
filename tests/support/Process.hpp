#pragma once

#include <string>
#include <vector>

/// How a child process ended and what it wrote.
struct ProcessResult {
    /// The exit status, or minus the signal that ended it.
    int status;
    std::string output;
    std::string errors;
};

/// Runs a program to its end. Each of @p environment, "NAME=VALUE", is set in addition to the
/// caller's; a bare "NAME" is removed.
ProcessResult runProcess(std::vector<std::string> commandLine,
                         const std::vector<std::string>& environment = {});
