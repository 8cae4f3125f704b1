#include "support/SdkTest.hpp"

namespace test_support {

SdkTest::SdkTest() {
    hid.attach({"1-1:1.0", vendorId, GetParam().productId, L"VA-0001"});
}

SdkTest::~SdkTest() {
    VeltraSDK_Destroy(flat);
}

VeltraSDK& SdkTest::sdk() {
    if (blocking == nullptr) {
        blocking = std::make_unique<VeltraSDK>(patientMs);
        EXPECT_TRUE(blocking->connect(""));
    }
    return *blocking;
}

VeltraSDK_Handle* SdkTest::handle() {
    if (flat == nullptr) {
        flat = VeltraSDK_Create(patientMs);
        EXPECT_TRUE(VeltraSDK_Connect(flat, nullptr));
    }
    return flat;
}

void SdkTest::onWire(const Bytes& requestPacket, const Bytes& responsePacket) {
    hid.expectWrite(GetParam().output(requestPacket), {GetParam().input(responsePacket)});
}

void SdkTest::onWire(const Bytes& requestPacket) {
    hid.expectWrite(GetParam().output(requestPacket));
}

void SdkTest::onWireLong(const Bytes& request, const Bytes& response) {
    hid.expectWrites(GetParam().outputs(request), GetParam().inputs(response));
}

void SdkTest::expectNothingSent() const {
    EXPECT_TRUE(hid.writes().empty());
}

} // namespace test_support
