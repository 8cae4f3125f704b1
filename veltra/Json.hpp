// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace veltra {

/// A JSON value, written as what it is: {{"op", "i2c.read"}, {"count", 4}} is an object. Members
/// stay in the order in which they were written, as people read them.
class Json {
public:
    struct Member;

    // NOLINTBEGIN(google-explicit-constructor): a member's value is any of these.
    Json(std::nullptr_t = nullptr) {}
    Json(const char* text) : value(std::string(text)) {}
    Json(std::string text) : value(std::move(text)) {}
    template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number>>>
    Json(Number number) : value(Widest<Number>{number}) {}
    template <typename Element>
    Json(const std::vector<Element>& elements)
        : value(std::vector<Json>(elements.begin(), elements.end())) {}
    Json(std::initializer_list<Member> members);
    // NOLINTEND(google-explicit-constructor)

    /// The member of that name; added, as null, where the object has none.
    Json& operator[](const std::string& name);
    /// Adds the members of another object.
    void add(const Json& members);

    /// On one line. What is no UTF-8 is replaced: bytes of an adapter must not end the program.
    [[nodiscard]] std::string text() const;

private:
    template <typename Number>
    using Widest = std::conditional_t<
        std::is_same_v<Number, bool>, bool,
        std::conditional_t<std::is_floating_point_v<Number>, double,
                           std::conditional_t<std::is_signed_v<Number>, int64_t, uint64_t>>>;
    struct Writing;

    std::variant<std::nullptr_t, bool, int64_t, uint64_t, double, std::string, std::vector<Json>,
                 std::vector<Member>>
        value;
};

struct Json::Member {
    std::string name;
    Json value;
};

} // namespace veltra
