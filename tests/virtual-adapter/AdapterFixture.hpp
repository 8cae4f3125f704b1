// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/FactoryBoard.hpp"
#include "bytes/ByteReader.hpp"
#include "model/Adapter.hpp"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace virtual_adapter {

/// A virtual adapter with the questions that tests ask of it. A test that needs a world of its own
/// hands its board over.
class AdapterFixture : public testing::Test {
protected:
    explicit AdapterFixture(Board board = factoryBoard(),
                            const AdapterVariant& variant = fullSpeedVariant)
        : adapter(variant, "VA-0001", std::move(board)) {}

    /// The response to @p request and the notifications that it gave rise to.
    std::vector<Frame> frames(const Frame& request) {
        std::vector<Frame> answered;
        for (CountedFrame& message : adapter.handle(request)) {
            answered.push_back(std::move(message.frame));
        }
        return answered;
    }

    /// The response to @p request, which gives rise to no notification.
    Frame response(const Frame& request) {
        const std::vector<Frame> answered = frames(request);
        EXPECT_EQ(answered.size(), 1U);
        return answered.empty() ? Frame{} : answered.front();
    }

    /// The status of the response to @p request.
    unsigned status(const Frame& request) {
        const std::vector<Frame> answered = frames(request);
        if (answered.empty() || answered.front().size() < 6) {
            ADD_FAILURE() << "no whole response";
            return 0xFFFF;
        }
        ByteReader reader(answered.front());
        reader.skip(4);
        return reader.u16();
    }

    /// Sets the I/O voltage to 3.3 V.
    void powerOn() { EXPECT_EQ(status({0x01, 0x00, 0x05, 0x04, 0xE4, 0x0C, 0x01}), 0x0000U); }

    Adapter adapter;
};

} // namespace virtual_adapter
