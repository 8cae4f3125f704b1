// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/ScriptedHid.hpp"

#include <ostream>
#include <string>

#include <gtest/gtest.h>

namespace test_support {

/// An adapter variant as the wire sees it.
struct Variant {
    std::string name;
    uint16_t productId;
    size_t reportSize;
    /// Whether the host speaks to it in strict mode.
    bool strict = false;

    /// An output report: report identifier 0, the packet's bytes, zeros up to the report's size.
    [[nodiscard]] Bytes output(const Bytes& packet) const;
    /// An input report: the packet's bytes, zeros up to the report's size.
    [[nodiscard]] Bytes input(const Bytes& packet) const;
    /// The packets of a message too long to be written out, padded to output reports.
    [[nodiscard]] std::vector<Bytes> outputs(const Bytes& message) const;
    [[nodiscard]] std::vector<Bytes> inputs(const Bytes& message) const;
};

/// So many bytes that tell their places: 0 to 250, over and over.
Bytes counting(size_t size);

/// An object's memory, padding included.
template <typename Object>
Bytes memoryOf(const Object& object) {
    const auto* const first = reinterpret_cast<const uint8_t*>(&object);
    return Bytes(first, first + sizeof(object));
}

constexpr uint16_t vendorId = 0x1209;

extern const Variant fullSpeed;
extern const Variant highSpeed;
extern const Variant fullSpeedStrict;
extern const Variant highSpeedStrict;

inline std::ostream& operator<<(std::ostream& out, const Variant& variant) {
    return out << variant.name;
}

/// Runs every test of a fixture on both variants.
#define INSTANTIATE_ON_BOTH_VARIANTS(Fixture)                                                      \
    INSTANTIATE_TEST_SUITE_P(BothVariants, Fixture,                                                \
                             testing::Values(test_support::fullSpeed, test_support::highSpeed),    \
                             [](const auto& variant) { return variant.param.name; })

/// The same without and with strict mode, for what holds in both.
#define INSTANTIATE_IN_BOTH_MODES(Fixture)                                                         \
    INSTANTIATE_TEST_SUITE_P(BothModes, Fixture,                                                   \
                             testing::Values(test_support::fullSpeed, test_support::highSpeed,     \
                                             test_support::fullSpeedStrict,                        \
                                             test_support::highSpeedStrict),                       \
                             [](const auto& variant) { return variant.param.name; })

/// Both variants in strict mode.
#define INSTANTIATE_IN_STRICT_MODE(Fixture)                                                        \
    INSTANTIATE_TEST_SUITE_P(                                                                      \
        StrictMode, Fixture,                                                                       \
        testing::Values(test_support::fullSpeedStrict, test_support::highSpeedStrict),             \
        [](const auto& variant) { return variant.param.name; })

} // namespace test_support
