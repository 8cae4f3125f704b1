// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Input.hpp"

#include "support/ScriptedHid.hpp"

namespace fuzzing {

/// An adapter on the stand-in for hidapi that answers each report with what it was told. One exists
/// at a time.
///
/// Writes settle: an operation with a time-out of 0 finds its response there or never, and a run
/// depends on nothing but its input.
///
/// An answer is a list, ended by 0: 1 and bytes for a report; 2 and bytes in two parts for a
/// message, which is cut into packets; 3 for a read that fails; 4 for the write to fail; 5 and
/// bytes in two parts for a message that answers the request with its own identifier and command.
class HostileAdapter {
public:
    explicit HostileAdapter(bool highSpeed);

    /// Gives the answers to the next writes, one list after the other.
    void answerWith(Bytes lists);

private:
    std::vector<Bytes> answersTo(const Bytes& report);

    test_support::ScriptedHid hid;
    size_t reportSize;
    Bytes answerLists;
    Input answers{nullptr, 0};
};

} // namespace fuzzing
