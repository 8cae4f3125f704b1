// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

#include <utility>

namespace test_support {

SdkTest::SdkTest(int timeout) : timeoutMs(timeout) {
    hid.attach({"1-1:1.0", vendorId, GetParam().productId, L"VA-0001"});
}

VeltraSDK& SdkTest::sdk() {
    if (blocking == nullptr) {
        blocking = std::make_unique<VeltraSDK>(timeoutMs);
        blocking->setStrict(GetParam().strict);
        EXPECT_TRUE(blocking->connect(""));
    }
    return *blocking;
}

VeltraSDK_Handle* SdkTest::handle() {
    if (flat == nullptr) {
        flat.reset(VeltraSDK_Create(timeoutMs));
        VeltraSDK_SetStrict(flat.get(), GetParam().strict);
        EXPECT_TRUE(VeltraSDK_Connect(flat.get(), nullptr));
    }
    return flat.get();
}

void SdkTest::onWire(const Bytes& requestPacket, const Bytes& responsePacket) {
    hid.expectWrite(GetParam().output(requestPacket), {GetParam().input(responsePacket)});
}

void SdkTest::onCommand(uint16_t status, const Bytes& requestPacket) {
    const auto header = requestPacket.begin() + 2;
    Bytes responsePacket{0x1B, 0x00};
    responsePacket.insert(responsePacket.end(), header, header + 4);
    responsePacket.push_back(static_cast<uint8_t>(status & 0xFFU));
    responsePacket.push_back(static_cast<uint8_t>(status >> 8U));
    onWire(requestPacket, responsePacket);
}

void SdkTest::onWire(const Bytes& requestPacket) {
    hid.expectWrite(GetParam().output(requestPacket));
}

void SdkTest::onWireLong(const Bytes& request, const Bytes& response) {
    hid.expectWrites(GetParam().outputs(request), GetParam().inputs(response));
}

void SdkTest::withEveryTruncation(Bytes request, Bytes response,
                                  const std::function<void(const Bytes& received)>& operation) {
    constexpr size_t minFrameSize = 6;
    const Bytes emptyPacket{0x03, 0x00};
    for (size_t length = response.size() + 1; length-- > 0;) {
        SCOPED_TRACE("the first " + std::to_string(length) + " bytes of the response");
        const bool dropped = length < minFrameSize;
        Bytes truncation = response;
        truncation.resize(length);
        std::vector<Bytes> answers = GetParam().inputs(truncation);
        if (length == 0) {
            answers = {GetParam().input(emptyPacket)};
        }
        if (dropped) {
            const std::vector<Bytes> whole = GetParam().inputs(response);
            answers.insert(answers.end(), whole.begin(), whole.end());
            truncation = response;
        }
        hid.expectWrites(GetParam().outputs(request), std::move(answers));
        truncation.resize(response.size());
        operation(truncation);
        ++request[0];
        ++response[0];
    }
}

void SdkTest::deliver(const Bytes& packet) {
    hid.deliver(GetParam().input(packet));
    EXPECT_TRUE(hid.waitUntilDrained());
}

void SdkTest::expectNothingSent() const {
    EXPECT_TRUE(hid.writes().empty());
}

} // namespace test_support
