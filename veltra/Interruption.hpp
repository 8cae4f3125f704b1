// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

namespace veltra {

/// Ctrl+C and its relatives: the first one lets a command end in order, the second one ends the
/// program as it always would.
class Interruption {
public:
    /// From now on they are heard.
    static void listen();
    static bool requested();
    /// Readable once one has come; for poll.
    static int descriptor();
};

} // namespace veltra
