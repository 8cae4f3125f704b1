// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/program/part_lines.hpp"

#include "board/program/PartProcess.hpp"
#include "bytes/words.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>

namespace virtual_adapter {

namespace {

using nlohmann::ordered_json;

constexpr int version = 1;
constexpr size_t maxShown = 80;
constexpr size_t maxErrorLength = 200;

/// The beginning of a text, fit for a terminal.
std::string shown(const std::string& text) {
    std::string printable = text.substr(0, maxShown);
    std::replace_if(
        printable.begin(), printable.end(),
        [](char character) { return character < ' ' || character > '~'; }, '?');
    return printable + (text.size() > maxShown ? "..." : "");
}

[[noreturn]] void refuse(const std::string& line, const std::string& expected) {
    throw PartFailure("answers '" + shown(line) + "' where " + expected + " is expected");
}

/// The value of the object's only member, or nothing when it is no such object.
std::optional<ordered_json> onlyMember(const std::string& line, const char* name) {
    const ordered_json object = ordered_json::parse(line, nullptr, false);
    if (!object.is_object() || object.size() != 1 || !object.contains(name)) {
        return std::nullopt;
    }
    return object[name];
}

std::string textOf(const ordered_json& object) {
    // What is no UTF-8 cannot be said in JSON.
    return object.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

} // namespace

std::string helloLine() {
    return textOf({{"veltra-part", version}});
}

std::string startLine(bool read, bool restart) {
    return textOf({{"op", "start"}, {"read", read}, {"restart", restart}});
}

std::string writeLine(const Bytes& bytes) {
    return textOf({{"op", "write"}, {"data", hexOf(bytes)}});
}

std::string readLine(size_t count) {
    return textOf({{"op", "read"}, {"count", count}});
}

std::string stopLine() {
    return textOf({{"op", "stop"}});
}

std::string transferLine(const Bytes& sent) {
    return textOf({{"op", "transfer"}, {"data", hexOf(sent)}});
}

std::string setLine(const std::string& name, const std::string& value) {
    return textOf({{"op", "set"}, {"name", name}, {"value", value}});
}

void readHello(const std::string& line) {
    const auto told = onlyMember(line, "veltra-part");
    if (!told || !told->is_number_integer() || *told != version) {
        refuse(line, helloLine());
    }
}

bool readAcknowledge(const std::string& line) {
    const auto told = onlyMember(line, "ack");
    if (!told || !told->is_boolean()) {
        refuse(line, R"({"ack":true} or {"ack":false})");
    }
    return told->get<bool>();
}

size_t readAcknowledgedBytes(const std::string& line, size_t sent) {
    const auto told = onlyMember(line, "ack");
    if (!told || !told->is_number_unsigned() || told->get<uint64_t>() > sent) {
        refuse(line, R"({"ack":N} with N from 0 to )" + std::to_string(sent));
    }
    return told->get<size_t>();
}

Bytes readData(const std::string& line, size_t count) {
    const auto told = onlyMember(line, "data");
    const auto bytes =
        told && told->is_string() ? bytesOfHex(told->get<std::string>()) : std::nullopt;
    if (!bytes || bytes->size() != count) {
        refuse(line, R"({"data":"..."} with )" + std::to_string(count) + " bytes in hexadecimal");
    }
    return *bytes;
}

void readNothing(const std::string& line) {
    const ordered_json object = ordered_json::parse(line, nullptr, false);
    if (!object.is_object() || !object.empty()) {
        refuse(line, "{}");
    }
}

std::string readSetResult(const std::string& line) {
    const auto error = onlyMember(line, "error");
    if (!error) {
        const ordered_json object = ordered_json::parse(line, nullptr, false);
        if (!object.is_object() || !object.empty()) {
            refuse(line, R"({} or {"error":"..."})");
        }
        return {};
    }
    if (!error->is_string() || error->get<std::string>().empty()) {
        refuse(line, R"({} or {"error":"..."})");
    }
    return error->get<std::string>().substr(0, maxErrorLength);
}

} // namespace virtual_adapter
