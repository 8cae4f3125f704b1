// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "i3c/Ccc.hpp"

#include "Failure.hpp"

#include <algorithm>

namespace veltra {

namespace {

constexpr uint8_t firstDirectCode = 0x80;
constexpr size_t maxData = 0xFF;

bool isNumber(const std::string& text) {
    return !text.empty() && text[0] >= '0' && text[0] <= '9';
}

/// A code without a name: whether it is direct is in its number, and only the user knows the rest.
CccName unnamed(const std::string& text) {
    const auto code = static_cast<uint8_t>(parseNumber("code", text, 0, 0xFF));
    return code < firstDirectCode ? CccName{"", code, std::nullopt, CccFields::Any, 0}
                                  : CccName{"", std::nullopt, code, CccFields::Any, 0};
}

CccName find(const std::string& text) {
    if (isNumber(text)) {
        return unnamed(text);
    }
    std::vector<std::string> known;
    for (const CccName& candidate : cccNames()) {
        if (text == candidate.name) {
            return candidate;
        }
        known.emplace_back(candidate.name);
    }
    refuseName("code", text, known);
}

size_t minValues(CccFields fields) {
    return fields == CccFields::None || fields == CccFields::Read || fields == CccFields::Any ? 0
                                                                                              : 1;
}

/// Whether the first word names the target.
bool namesTarget(const CccName& ccc, const std::vector<std::string>& words, bool reads) {
    if (!ccc.direct || !ccc.broadcast) {
        return ccc.direct.has_value();
    }
    return reads || words.size() > minValues(ccc.fields);
}

void appendLimit(Bytes& data, const std::string& word) {
    const auto limit = static_cast<uint16_t>(parseNumber("limit", word, 0, 0xFFFF));
    data.push_back(static_cast<uint8_t>(limit >> 8U));
    data.push_back(static_cast<uint8_t>(limit));
}

Bytes dataOf(const CccName& ccc, const std::vector<std::string>& values) {
    const size_t max = ccc.fields == CccFields::LimitAndIbi ? 2 : minValues(ccc.fields);
    if (ccc.fields != CccFields::Any &&
        (values.size() < minValues(ccc.fields) || values.size() > max)) {
        throw Failure::ofUsage(std::string(ccc.name) + " takes " +
                               (max == 2   ? "1 or 2"
                                : max == 1 ? "1"
                                           : "no") +
                               " value" + (max == 1 ? "" : "s") + ", not " +
                               std::to_string(values.size()));
    }
    Bytes data;
    switch (ccc.fields) {
    case CccFields::Limit:
    case CccFields::LimitAndIbi:
        appendLimit(data, values[0]);
        if (values.size() > 1) {
            data.push_back(static_cast<uint8_t>(parseNumber("payload", values[1], 0, 0xFF)));
        }
        return data;
    case CccFields::Address:
        return {static_cast<uint8_t>(parseAddress(values[0]) << 1U)};
    default:
        return parseBytes(values, maxData);
    }
}

} // namespace

const std::vector<CccName>& cccNames() {
    static const std::vector<CccName> names = {
        {"enec", 0x00, 0x80, CccFields::Byte, 0},
        {"disec", 0x01, 0x81, CccFields::Byte, 0},
        {"entas0", 0x02, 0x82, CccFields::None, 0},
        {"entas1", 0x03, 0x83, CccFields::None, 0},
        {"entas2", 0x04, 0x84, CccFields::None, 0},
        {"entas3", 0x05, 0x85, CccFields::None, 0},
        {"rstdaa", 0x06, {}, CccFields::None, 0},
        {"entdaa", 0x07, {}, CccFields::None, 0},
        {"defslvs", 0x08, {}, CccFields::Any, 0},
        {"setmwl", 0x09, 0x89, CccFields::Limit, 0},
        {"setmrl", 0x0A, 0x8A, CccFields::LimitAndIbi, 0},
        {"setaasa", 0x29, {}, CccFields::Any, 0},
        {"rstact", 0x2A, 0x9A, CccFields::None, 1},
        {"setdasa", {}, 0x87, CccFields::Address, 0},
        {"setnewda", {}, 0x88, CccFields::Address, 0},
        {"getmwl", {}, 0x8B, CccFields::Read, 2},
        {"getmrl", {}, 0x8C, CccFields::Read, 3},
        {"getpid", {}, 0x8D, CccFields::Read, 6},
        {"getbcr", {}, 0x8E, CccFields::Read, 1},
        {"getdcr", {}, 0x8F, CccFields::Read, 1},
        {"getstatus", {}, 0x90, CccFields::Read, 2},
        {"getmxds", {}, 0x94, CccFields::Read, 5},
        {"getcaps", {}, 0x95, CccFields::Read, 4},
    };
    return names;
}

CccRequest parseCcc(const std::string& name, const std::vector<std::string>& words,
                    const std::string& definingByte, const std::string& count) {
    const CccName ccc = find(name);
    CccRequest request{name, 0, "", false, 0, {}, std::nullopt};
    request.isRead = ccc.fields == CccFields::Read || !count.empty();
    request.count =
        count.empty() ? ccc.readBytes : static_cast<uint8_t>(parseNumber("count", count, 1, 0xFF));
    if (!definingByte.empty()) {
        request.definingByte =
            static_cast<uint8_t>(parseNumber("defining byte", definingByte, 0, 0xFF));
    }
    std::vector<std::string> values = words;
    const bool all = !words.empty() && words.front() == "all" && ccc.broadcast;
    if (all || namesTarget(ccc, words, request.isRead)) {
        if (words.empty()) {
            throw Failure::ofUsage(name + " needs a target: 0x09, pid:0123456789ab or static:0x48");
        }
        request.target = all ? "" : words.front();
        values.erase(values.begin());
    }
    request.code = request.target.empty() ? ccc.broadcast.value_or(0) : ccc.direct.value_or(0);
    if (request.isRead && request.target.empty()) {
        throw Failure::ofUsage(name + " cannot be read from all targets at once");
    }
    request.data = request.isRead && values.empty() ? Bytes() : dataOf(ccc, values);
    if (request.isRead && !request.data.empty()) {
        throw Failure::ofUsage(name + " is read and takes no values");
    }
    return request;
}

} // namespace veltra
