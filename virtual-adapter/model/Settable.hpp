// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace virtual_adapter {

/// Whatever stands on a bus, as the world around the board changes it: the air gets warmer, a
/// jumper is set.
class Settable {
public:
    Settable() = default;
    Settable(const Settable&) = delete;
    Settable& operator=(const Settable&) = delete;
    virtual ~Settable() = default;

    /// Gives a setting another value, both as users write them. Returns an empty text, or what is
    /// wrong and what is allowed; nothing has changed then.
    virtual std::string set(const std::string& name, const std::string& /*value*/) {
        return "there is no setting '" + name + "'; this part has none that changes";
    }
};

} // namespace virtual_adapter
