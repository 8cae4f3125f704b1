// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace veltra {

/// A JSON value, written as what it is: {{"op", "i2c.read"}, {"count", 4}} is an object. Members
/// stay in the order in which they were written, as people read them.
class Json {
public:
    struct Member;

    // NOLINTBEGIN(google-explicit-constructor): a member's value is any of these.
    Json(std::nullptr_t = nullptr);
    Json(const char* text);
    Json(std::string text);
    template <typename Type, typename = std::enable_if_t<std::is_arithmetic_v<Type>>>
    Json(Type number) : Json(Number(Widest<Type>{number})) {}
    template <typename Element>
    Json(const std::vector<Element>& elements)
        : Json(std::vector<Json>(elements.begin(), elements.end())) {}
    Json(std::vector<Json> elements);
    Json(std::initializer_list<Member> members);
    // NOLINTEND(google-explicit-constructor)

    // What the compiler would write into every file takes it a fifth of the file's time.
    Json(const Json&);
    Json(Json&&) noexcept;
    Json& operator=(const Json&);
    Json& operator=(Json&&) noexcept;
    ~Json();

    /// The member of that name; added, as null, where the object has none.
    Json& operator[](const std::string& name);
    /// Adds the members of another object.
    void add(const Json& members);

    /// On one line. What is no UTF-8 is replaced: bytes of an adapter must not end the program.
    [[nodiscard]] std::string text() const;

private:
    template <typename Type>
    using Widest = std::conditional_t<
        std::is_same_v<Type, bool>, bool,
        std::conditional_t<std::is_floating_point_v<Type>, double,
                           std::conditional_t<std::is_signed_v<Type>, int64_t, uint64_t>>>;
    using Number = std::variant<bool, int64_t, uint64_t, double>;
    struct Writing;

    explicit Json(Number number);

    std::variant<std::nullptr_t, Number, std::string, std::vector<Json>, std::vector<Member>> value;
};

struct Json::Member {
    std::string name;
    Json value;
};

} // namespace veltra
