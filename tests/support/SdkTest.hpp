// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "capi/Handle.hpp"
#include "support/Variant.hpp"

#include <veltrasdk/VeltraSDK.hpp>
#include <veltrasdk/veltrasdk.h>

#include <functional>
#include <memory>

namespace test_support {

/// The time-out of tests in which the response is sure to come.
constexpr int patientMs = generousLimitMs;

/// The C functions' own result codes.
constexpr int16_t noResponse = 0x2000;
constexpr int16_t notConnected = 0x4000;
constexpr int16_t refused = -32768;

// What an operation must leave alone when it fails.
constexpr uint8_t untouchedByte = 0xEE;
constexpr uint16_t untouchedWord = 0xEEEE;

struct DestroyHandle {
    void operator()(VeltraSDK_Handle* handle) const { VeltraSDK_Destroy(handle); }
};

/// A C handle that is destroyed with its scope.
using OwnedHandle = std::unique_ptr<VeltraSDK_Handle, DestroyHandle>;

/// A blocking object and a C handle over one scripted adapter, both connected, each with its own
/// transaction identifiers: the first request of either carries identifier 1. The fixture runs on
/// both models, and in the mode that its parameter says.
///
///     onWire({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05},
///            {0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01});
///     EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0);
class SdkTest : public testing::TestWithParam<Variant> {
protected:
    explicit SdkTest(int timeoutMs = patientMs);

    /// The class's object, connected at its first use. Use only one of the two in a test.
    VeltraSDK& sdk();
    /// The C handle, connected at its first use.
    VeltraSDK_Handle* handle();

    /// Expects a request of one packet, given by its literal bytes, and answers it with one packet.
    void onWire(const Bytes& requestPacket, const Bytes& responsePacket);
    /// Expects a request of one packet, and answers with @p status and nothing else.
    void onCommand(uint16_t status, const Bytes& requestPacket);
    /// Expects a request that gets no answer.
    void onWire(const Bytes& requestPacket);
    /// Expects a request and answers it with a message that may take several packets.
    void onWireLong(const Bytes& request, const Bytes& response);

    /// Runs an operation once for every truncation of its response, from the whole frame down to
    /// none of its bytes, and hands it the frame that it has to behave as if it had received: the
    /// truncation with zeros in place of what is missing. A truncation without a whole header and
    /// status is dropped, so the whole response follows it.
    ///
    /// @p request and @p response are frames with the next identifier; later ones count on from it.
    void withEveryTruncation(Bytes request, Bytes response,
                             const std::function<void(const Bytes& received)>& operation);

    /// Lets the polling thread read a report of one packet and waits until it has been handled.
    void deliver(const Bytes& packet);

    /// Checks that no request has left the host.
    void expectNothingSent() const;

    ScriptedHid hid;

private:
    int timeoutMs;
    std::unique_ptr<VeltraSDK> blocking;
    OwnedHandle flat;
};

/// The same with a time-out of 0, for tests in which no response comes.
class ImpatientSdkTest : public SdkTest {
protected:
    ImpatientSdkTest() : SdkTest(0) {}
};

} // namespace test_support
