// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace tty {

/// A link to a terminal, as long as this lives. One that is left of a terminal before is replaced;
/// whatever else has the name stays, and is a std::runtime_error.
class FixedName {
public:
    FixedName(std::string link, std::string terminal);
    ~FixedName();
    FixedName(const FixedName&) = delete;
    FixedName& operator=(const FixedName&) = delete;

private:
    std::string name;
    std::string target;
};

} // namespace tty
