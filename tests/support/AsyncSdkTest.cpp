// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/AsyncSdkTest.hpp"

namespace test_support {

AsyncSdkTest::AsyncSdkTest() {
    hid.attach({"1-1:1.0", vendorId, GetParam().productId, L"VA-0001"});
    EXPECT_TRUE(sdk.connect(""));
}

void AsyncSdkTest::expectSent(const Bytes& packet) const {
    expectWrites({GetParam().output(packet)});
}

void AsyncSdkTest::expectSentLong(const Bytes& message) const {
    expectWrites(GetParam().outputs(message));
}

void AsyncSdkTest::expectNothingSent() const {
    expectWrites({});
}

void AsyncSdkTest::expectWrites(const std::vector<Bytes>& reports) const {
    const std::vector<Bytes> seen = hid.writes();
    ASSERT_EQ(seen.size(), reports.size()) << "reports sent";
    for (size_t i = 0; i < seen.size(); ++i) {
        EXPECT_TRUE(seen[i] == reports[i]) << "expected report " << i << ":" << hexDump(reports[i])
                                           << "\nseen:" << hexDump(seen[i]);
    }
}

} // namespace test_support
