// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/ScriptedHid.hpp"

#include <gtest/gtest.h>

namespace test_support {

void reportMisuse(const std::string& text) {
    ADD_FAILURE() << text;
}

} // namespace test_support
