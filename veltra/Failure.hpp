// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "ExitStatus.hpp"

#include <cstdint>
#include <exception>
#include <optional>
#include <string>

namespace veltra {

/// What a command is doing, for whoever reads that it failed.
struct Operation {
    std::string name;       ///< As JSON has it: "i2c.read".
    std::string subject;    ///< As people read it: "i2c read 0x22".
    std::optional<int> bus; ///< The I2C bus, where there are several.
    std::string family{};   ///< Whose supply it needs; empty where the name begins with it.
};

/// Why a command ends without having done what it was asked; told once, at the end of the program.
class Failure : public std::exception {
public:
    Failure(ExitStatus endsWith, std::string ofKind, std::string inWords)
        : exitStatus(endsWith), kind(std::move(ofKind)), text(std::move(inWords)) {}

    /// A result code that is not success, in words.
    static Failure ofResult(uint16_t result, const Operation& operation, int timeoutMs);
    /// What was typed makes no sense.
    static Failure ofUsage(std::string text);
    /// The user does not want to wait any longer.
    static Failure interruption();
    /// What nobody has foreseen where it came up.
    static Failure ofException(const std::exception& error);

    Failure&& advise(std::string advice) && {
        hint = std::move(advice);
        return std::move(*this);
    }

    [[nodiscard]] const char* what() const noexcept override { return text.c_str(); }

    ExitStatus exitStatus;
    std::string kind;
    std::string text;
    std::string hint;                ///< What to type next; empty where nobody can know.
    std::optional<uint16_t> status;  ///< The result code, where there is one.
    std::string progress;            ///< How far it came; empty where it came nowhere.
    std::string place;               ///< The line of a script; empty outside of one.
    std::optional<Operation> during; ///< Empty for what concerns no operation.
};

/// Whether it is for the I3C bus, the pins of "gpio" and so on.
bool concerns(const Operation& operation, const std::string& family);

/// A status as people read it: "not acknowledged (status 0x0006)".
std::string describeStatus(uint16_t status, const Operation& operation);

} // namespace veltra
