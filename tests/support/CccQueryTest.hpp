// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/SdkTest.hpp"

#include <functional>

namespace test_support {

/// A query among the Common Command Codes, to the target at 0x30. As literal bytes they are among
/// the frames that every code is compared with.
struct CccQuery {
    uint8_t control;
    uint8_t length;
    uint8_t code;
    uint8_t definingByte;
};

constexpr CccQuery getMwl{0x01, 2, 0x8B, 0x00};
constexpr CccQuery getMrl{0x01, 3, 0x8C, 0x00};
constexpr CccQuery getPid{0x01, 6, 0x8D, 0x00};
constexpr CccQuery getBcr{0x01, 1, 0x8E, 0x00};
constexpr CccQuery getDcr{0x01, 1, 0x8F, 0x00};
constexpr CccQuery getStatus{0x01, 2, 0x90, 0x00};
constexpr CccQuery getStatusOf0x91{0x11, 2, 0x90, 0x91};
constexpr CccQuery getCaps{0x01, 4, 0x95, 0x00};
constexpr CccQuery getCapsOfZero{0x11, 4, 0x95, 0x00};
constexpr CccQuery writeResetAction{0x10, 0, 0x9A, 0x01};
constexpr CccQuery readResetAction{0x11, 1, 0x9A, 0x81};

/// For tests of what becomes of replies, under identifiers from 1 on.
class CccQueryTest : public SdkTest {
protected:
    /// Expects a query and answers it with a reply that announces @p count bytes and carries
    /// @p data.
    void onQuery(const CccQuery& query, uint16_t status, uint8_t count, const Bytes& data);

    /// Runs an operation once for every truncation of its reply, which has the status 0x1234,
    /// announces @p count bytes and carries three.
    void withEveryTruncatedReply(const CccQuery& query, uint8_t count,
                                 const std::function<void(const Bytes& received)>& operation);

private:
    [[nodiscard]] Bytes request(const CccQuery& query) const;
    [[nodiscard]] Bytes reply(uint16_t status, uint8_t count, const Bytes& data) const;

    uint8_t nextId = 1;
};

} // namespace test_support
