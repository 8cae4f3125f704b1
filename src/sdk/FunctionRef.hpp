// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <utility>

template <typename Signature>
class FunctionRef;

/// Refers to a function object for as long as a call lasts: what takes it is compiled once, and
/// nothing is copied or allocated.
template <typename Result, typename... Parameters>
class FunctionRef<Result(Parameters...)> {
public:
    template <typename Function>
    explicit FunctionRef(Function& function)
        : object(const_cast<void*>(static_cast<const void*>(&function))), // NOLINT
          invoke([](void* referred, Parameters... parameters) -> Result {
              return (*static_cast<Function*>(referred))(std::forward<Parameters>(parameters)...);
          }) {}

    Result operator()(Parameters... parameters) const {
        return invoke(object, std::forward<Parameters>(parameters)...);
    }

private:
    void* object;
    Result (*invoke)(void*, Parameters...);
};
