#include "support/ScriptedHid.hpp"

#include <gtest/gtest.h>

namespace test_support {

void reportMisuse(const std::string& text) {
    ADD_FAILURE() << text;
}

} // namespace test_support
