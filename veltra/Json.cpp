// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Json.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace veltra {

using nlohmann::ordered_json;

/// The same value as its writer has it.
struct Json::Writing {
    ordered_json operator()(std::nullptr_t null) const { return null; }
    ordered_json operator()(const std::string& text) const { return text; }
    ordered_json operator()(const Number& number) const {
        return std::visit([](auto each) { return ordered_json(each); }, number);
    }
    ordered_json operator()(const std::vector<Json>& elements) const {
        ordered_json list = ordered_json::array();
        for (const Json& element : elements) {
            list.push_back(std::visit(*this, element.value));
        }
        return list;
    }
    ordered_json operator()(const std::vector<Member>& members) const {
        ordered_json object = ordered_json::object();
        for (const Member& member : members) {
            object[member.name] = std::visit(*this, member.value.value);
        }
        return object;
    }
};

Json::Json(std::nullptr_t) {}
Json::Json(const char* text) : value(std::string(text)) {}
Json::Json(std::string text) : value(std::move(text)) {}
Json::Json(Number number) : value(number) {}
Json::Json(std::vector<Json> elements) : value(std::move(elements)) {}
Json::Json(std::initializer_list<Member> members) : value(std::vector<Member>(members)) {}
Json::Json(const Json&) = default;
Json::Json(Json&&) noexcept = default;
Json& Json::operator=(const Json&) = default;
Json& Json::operator=(Json&&) noexcept = default;
Json::~Json() = default;

Json& Json::operator[](const std::string& name) {
    if (!std::holds_alternative<std::vector<Member>>(value)) {
        value = std::vector<Member>();
    }
    auto& members = std::get<std::vector<Member>>(value);
    const auto found = std::find_if(members.begin(), members.end(),
                                    [&](const Member& member) { return member.name == name; });
    return found == members.end() ? members.emplace_back(Member{name, nullptr}).value
                                  : found->value;
}

void Json::add(const Json& members) {
    for (const Member& member : std::get<std::vector<Member>>(members.value)) {
        (*this)[member.name] = member.value;
    }
}

std::string Json::text() const {
    return std::visit(Writing(), value)
        .dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

} // namespace veltra
