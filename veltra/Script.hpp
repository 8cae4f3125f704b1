// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Options.hpp"
#include "text/ScriptLine.hpp"

#include <string>
#include <vector>

namespace veltra {

/// Carries out a script's lines over one session: the commands of the command line, and beside them
/// sleep, expect, echo and set.
class Script {
public:
    explicit Script(Context& all) : context(all) {}

    /// Whatever goes wrong is a Failure, which does not know the line's number.
    void carryOut(const std::string& line);

private:
    void expect(const std::string& pattern) const;
    void carryOutCommand(const std::vector<std::string>& words);

    Context& context;
    Variables variables;
};

} // namespace veltra
