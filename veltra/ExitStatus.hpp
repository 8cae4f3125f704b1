// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

namespace veltra {

/// What the program ends with; scripts rely on it.
enum class ExitStatus : int {
    Done = 0,
    Refused = 1,       ///< By the adapter or a target; or a file cannot be read or written.
    CommandLine = 2,   ///< What was typed makes no sense, or must be confirmed and was not.
    NoAdapter = 3,     ///< None there, no permission, in use; doctor found a fault.
    NoAnswer = 4,      ///< The adapter does not answer, is gone or out of step.
    NotAsExpected = 5, ///< An expect or a verification is not met.
    NotStarted = 125,  ///< A program was not; one that was started ends as it does.
    Interrupted = 130, ///< As shells report it.
};

} // namespace veltra
