// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "system/UsbTree.hpp"

#include <veltrasdk/adapters.h>

#include <functional>
#include <string>
#include <vector>

namespace veltra {

/// One check: what was looked at, what was found, and what to type against it.
struct Check {
    enum class State { Ok, Fail, Skip };

    std::string name;
    State state;
    std::string text;
    std::string cure; ///< Empty unless it failed.
};

/// How the machine is asked, beside its files; tests answer themselves.
struct Machine {
    Roots roots;
    /// The serial number or path of the adapter that is meant; empty for the first one.
    std::string device;
    /// Where this program lies: the rule may be beside it.
    std::filesystem::path program;
    /// Whether the user may read and write the node.
    std::function<bool(const std::filesystem::path&)> mayOpen;
    std::function<std::vector<VeltraSDK_AdapterInfo>()> adapters;
    /// Opens that adapter and reads its strings; returns what failed, empty for nothing.
    std::function<std::string(const VeltraSDK_AdapterInfo&)> talkTo;
    std::string hidapiVersion;
    std::string libraryVersion;
};

/// Every check, in the order in which one needs the other: from the plug to the first answer.
std::vector<Check> diagnose(const Machine& machine);

} // namespace veltra
