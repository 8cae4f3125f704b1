// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/Variant.hpp"

#include <veltrasdk/VeltraAsyncSDK.hpp>

namespace test_support {

/// The encoders over one scripted adapter, connected. The fixture runs on both models.
///
///     EXPECT_EQ(sdk.gpioDigitalRead(1, GpioPinNumber_5), 0);
///     expectSent({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05});
class AsyncSdkTest : public testing::TestWithParam<Variant> {
protected:
    AsyncSdkTest();

    /// Checks that one packet was sent so far, given by its literal bytes, and nothing else.
    void expectSent(const Bytes& packet) const;
    /// Checks that the packets of one message were sent so far, and nothing else.
    void expectSentLong(const Bytes& message) const;
    /// Checks that no request has left the host.
    void expectNothingSent() const;

    ScriptedHid hid;
    VeltraAsyncSDK sdk;

private:
    void expectWrites(const std::vector<Bytes>& reports) const;
};

} // namespace test_support
