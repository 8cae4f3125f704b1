// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/tty/FixedName.hpp"

#include <filesystem>
#include <stdexcept>
#include <unistd.h>
#include <utility>

namespace tty {

namespace {

namespace fs = std::filesystem;

/// Empty where it is no link.
std::string targetOf(const std::string& link) {
    std::error_code error;
    return fs::read_symlink(link, error).string();
}

} // namespace

FixedName::FixedName(std::string link, std::string terminal)
    : name(std::move(link)), target(std::move(terminal)) {
    std::error_code error;
    const bool isThere = fs::symlink_status(name, error).type() != fs::file_type::not_found;
    if (isThere && targetOf(name).rfind("/dev/pts/", 0) != 0) {
        throw std::runtime_error(name + " is there already, and is no link to a terminal");
    }
    // A program that looks meanwhile finds the one or the other.
    const std::string temporary = name + "." + std::to_string(getpid());
    fs::create_symlink(target, temporary, error);
    if (!error) {
        fs::rename(temporary, name, error);
    }
    if (error) {
        throw std::runtime_error("cannot make the link " + name + ": " + error.message());
    }
}

FixedName::~FixedName() {
    std::error_code error;
    if (targetOf(name) == target) { // somebody else's by now otherwise
        fs::remove(name, error);
    }
}

} // namespace tty
