// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Input.hpp"

#include <veltrasdk/VeltraSDK.hpp>

#include <cstring>
#include <optional>
#include <tuple>
#include <utility>

namespace fuzzing {

/// One argument of an operation, made from the input.
template <typename Value>
struct Argument {
    explicit Argument(Input& input) : value(input.number<Value>()) {}
    Value& get() { return value; }
    Value value;
};

template <>
struct Argument<Bytes> {
    explicit Argument(Input& input) : value(input.twoPartBytes()) {}
    Bytes& get() { return value; }
    Bytes value;
};

template <>
struct Argument<std::vector<I3cTargetInfo>> {
    explicit Argument(Input& input) {
        const Bytes bytes = input.twoPartBytes();
        value.resize(bytes.size() / sizeof(I3cTargetInfo));
        if (!value.empty()) {
            std::memcpy(value.data(), bytes.data(), value.size() * sizeof(I3cTargetInfo));
        }
    }
    std::vector<I3cTargetInfo>& get() { return value; }
    std::vector<I3cTargetInfo> value;
};

template <>
struct Argument<std::optional<uint8_t>> {
    explicit Argument(Input& input) {
        if (input.number<bool>()) {
            value = input.byte();
        }
    }
    std::optional<uint8_t>& get() { return value; }
    std::optional<uint8_t> value;
};

/// Where an operation stores one byte, or null.
template <>
struct Argument<uint8_t*> {
    explicit Argument(Input& input) : isNull(input.number<bool>()) {}
    uint8_t* get() { return isNull ? nullptr : &value; }
    bool isNull;
    uint8_t value = 0;
};

template <>
struct Argument<VeltraSDK::DeviceInfo> {
    explicit Argument(Input& /*input*/) {}
    VeltraSDK::DeviceInfo& get() { return value; }
    VeltraSDK::DeviceInfo value;
};

/// Calls @p operation with @p subject and as many arguments as it takes, made in their order.
template <typename Subject, typename Operation, typename... Parameters>
void callWithArguments(Subject&& subject, Operation operation, Input& input,
                       std::tuple<Parameters...>* /*types*/) {
    std::tuple<Argument<std::decay_t<Parameters>>...> arguments{
        Argument<std::decay_t<Parameters>>(input)...};
    std::apply(
        [&](auto&... argument) {
            std::invoke(operation, subject, static_cast<Parameters>(argument.get())...);
        },
        arguments);
}

} // namespace fuzzing
