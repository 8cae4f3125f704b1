// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <veltrasdk/VeltraSDK.hpp>
#include <veltrasdk/veltrasdk.h>

#include <functional>
#include <string>
#include <vector>

/// The operations that are counted, on one adapter that the loopback plays, with a time-out.
class Operations {
public:
    explicit Operations(size_t reportSize, bool strict = false);
    ~Operations();
    Operations(const Operations&) = delete;
    Operations& operator=(const Operations&) = delete;

    struct Operation {
        std::string name;
        /// Returns whether the operation succeeded. What its name promises lies in its last bytes.
        std::function<bool()> run;
    };

    /// The small operations, of the class and of C; each has its results in kept memory.
    [[nodiscard]] const std::vector<Operation>& small() const { return smallOperations; }
    /// A message of 64 KiB.
    [[nodiscard]] const Operation& longRequest() const { return longOperation; }
    /// Receives @p count notifications, by the class's handler or by the C callback.
    bool receiveNotifications(bool throughC, size_t count);
    /// The same, of @p number, by the C callback and beside it by a queue, from which all are taken
    /// in the end.
    bool queueNotifications(size_t number);

    /// The operation of this name.
    [[nodiscard]] const Operation& find(const std::string& name) const;

private:
    VeltraSDK sdk;
    VeltraSDK_Handle* handle;
    std::vector<uint8_t> bytes;
    std::vector<uint8_t> sent;
    std::vector<uint8_t> subAddress;
    std::vector<uint8_t> longMessage;
    std::vector<uint8_t> buffer;
    uint16_t readCount = 0;
    std::vector<Operation> smallOperations;
    Operation longOperation;
};
