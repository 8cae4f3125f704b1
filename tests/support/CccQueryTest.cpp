// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/CccQueryTest.hpp"

namespace test_support {

Bytes CccQueryTest::request(const CccQuery& query) const {
    return {nextId,       0x00,       0x09,
            0x19,         0x30,       query.control,
            query.length, query.code, query.definingByte};
}

Bytes CccQueryTest::reply(uint16_t status, uint8_t count, const Bytes& data) const {
    Bytes frame{nextId,
                0x00,
                0x09,
                0x19,
                static_cast<uint8_t>(status & 0xFFU),
                static_cast<uint8_t>(status >> 8U),
                0xEE,
                0xEE,
                0xEE,
                count};
    frame.insert(frame.end(), data.begin(), data.end());
    return frame;
}

void CccQueryTest::onQuery(const CccQuery& query, uint16_t status, uint8_t count,
                           const Bytes& data) {
    onWireLong(request(query), reply(status, count, data));
    ++nextId;
}

void CccQueryTest::withEveryTruncatedReply(
    const CccQuery& query, uint8_t count,
    const std::function<void(const Bytes& received)>& operation) {
    const Bytes whole = reply(0x1234, count, {0xA1, 0xA2, 0xA3});
    withEveryTruncation(request(query), whole, operation);
    nextId = static_cast<uint8_t>(nextId + whole.size() + 1);
}

} // namespace test_support
