// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

#include <array>
#include <string>
#include <vector>

using namespace test_support;

namespace {

/// hidapi is not shared in this process.
class AdaptersTest : public testing::Test {
protected:
    void attach(std::optional<std::string> path, std::optional<std::wstring> serialNumber,
                const Variant& variant = fullSpeed) {
        hid.attach({std::move(path), vendorId, variant.productId, std::move(serialNumber)});
    }

    /// The one that is attached.
    static VeltraSDK_AdapterInfo only() {
        const std::vector<VeltraSDK_AdapterInfo> adapters = VeltraSDK::adapters();
        EXPECT_EQ(adapters.size(), 1U);
        return adapters.empty() ? VeltraSDK_AdapterInfo{} : adapters.front();
    }

    ScriptedHid hid;
};

TEST_F(AdaptersTest, WithoutAnAdapterTheListIsEmpty) {
    hid.attach({"1-9:1.0", 0x046D, 0xC077, L"MOUSE"});
    EXPECT_TRUE(VeltraSDK::adapters().empty());
    EXPECT_EQ(VeltraSDK_Enumerate(nullptr, 0), 0U);
    EXPECT_EQ(hid.enumerateCalls(), 2U);
}

TEST_F(AdaptersTest, AnEnumerationThatFailsListsNothing) {
    attach("1-1:1.0", L"VA-0001");
    hid.failNth(HidCall::Enumerate, 1);
    EXPECT_TRUE(VeltraSDK::adapters().empty());
    EXPECT_STREQ(only().serialNumber, "VA-0001");
}

TEST_F(AdaptersTest, EveryAdapterIsListedInHidapisOrder) {
    attach("1-3:1.0", L"VA-0003", highSpeed);
    hid.attach({"1-9:1.0", 0x046D, 0xC077, L"MOUSE"});
    attach("1-1:1.0", L"VA-0001");
    const std::vector<VeltraSDK_AdapterInfo> adapters = VeltraSDK::adapters();
    ASSERT_EQ(adapters.size(), 2U);
    EXPECT_STREQ(adapters[0].path, "1-3:1.0");
    EXPECT_STREQ(adapters[0].serialNumber, "VA-0003");
    EXPECT_EQ(adapters[0].reportSize, 1024);
    EXPECT_TRUE(adapters[0].accessible);
    EXPECT_STREQ(adapters[1].path, "1-1:1.0");
    EXPECT_STREQ(adapters[1].serialNumber, "VA-0001");
    EXPECT_EQ(adapters[1].reportSize, 64);
    EXPECT_TRUE(adapters[1].accessible);
}

TEST_F(AdaptersTest, AnAdapterWhoseStringsCannotBeReadIsNotAccessible) {
    attach("1-1:1.0", std::nullopt);
    const VeltraSDK_AdapterInfo adapter = only();
    EXPECT_STREQ(adapter.path, "1-1:1.0");
    EXPECT_STREQ(adapter.serialNumber, "");
    EXPECT_FALSE(adapter.accessible);
}

TEST_F(AdaptersTest, AnAdapterWithoutAPathIsLeftOut) {
    attach(std::nullopt, L"VA-0001");
    attach("1-2:1.0", L"VA-0002");
    EXPECT_STREQ(only().serialNumber, "VA-0002");
}

TEST_F(AdaptersTest, ASerialNumberIsUtf8AndConnectsItsAdapter) {
    attach("1-1:1.0", L"VA-\u00E9\U0001F50C");
    const VeltraSDK_AdapterInfo adapter = only();
    EXPECT_STREQ(adapter.serialNumber, "VA-\xC3\xA9\xF0\x9F\x94\x8C");
    VeltraSDK sdk(0);
    EXPECT_TRUE(sdk.connectWithSerialNumber(adapter.serialNumber));
    EXPECT_TRUE(sdk.connect(adapter.path));
}

TEST_F(AdaptersTest, ASerialNumberThatUtf8CannotHoldIsEmpty) {
    attach("1-1:1.0", std::wstring(1, wchar_t{0x110000}));
    const VeltraSDK_AdapterInfo adapter = only();
    EXPECT_STREQ(adapter.serialNumber, "");
    EXPECT_TRUE(adapter.accessible);
}

TEST_F(AdaptersTest, TextsAreCutToTheirRoom) {
    attach(std::string(64, 'p'), std::wstring(512, L's'));
    const VeltraSDK_AdapterInfo adapter = only();
    EXPECT_EQ(adapter.path, std::string(63, 'p'));
    EXPECT_EQ(adapter.serialNumber, std::string(511, 's'));
}

TEST_F(AdaptersTest, InCNoMoreAdaptersAreStoredThanThereIsRoomFor) {
    attach("1-1:1.0", L"VA-0001");
    attach("1-2:1.0", L"VA-0002");
    attach("1-3:1.0", L"VA-0003");
    for (size_t capacity = 0; capacity <= 4; ++capacity) {
        std::array<VeltraSDK_AdapterInfo, 4> adapters{};
        EXPECT_EQ(VeltraSDK_Enumerate(adapters.data(), capacity), 3U);
        for (size_t i = 0; i < adapters.size(); ++i) {
            const bool stored = i < capacity && i < 3;
            EXPECT_EQ(adapters.at(i).serialNumber,
                      stored ? "VA-000" + std::to_string(i + 1) : std::string());
        }
    }
}

// What a program without sharing sees of hidapi.

TEST_F(AdaptersTest, AListingNeitherInitialisesHidapiNorShutsItDown) {
    EXPECT_TRUE(VeltraSDK::adapters().empty());
    const VeltraSDK sdk(0);
    EXPECT_TRUE(VeltraSDK::adapters().empty());
    EXPECT_EQ(hid.initCalls(), 1U);
    EXPECT_EQ(hid.exitCalls(), 0U);
}

TEST_F(AdaptersTest, AnObjectThatExistsIsInTheWayOfSharing) {
    const VeltraSDK sdk(0);
    EXPECT_FALSE(VeltraSDK_ShareHidapi());
    EXPECT_FALSE(VeltraSDK::shareHidapi());
}

TEST_F(AdaptersTest, WithoutSharingEveryObjectInitialisesAndShutsDown) {
    auto first = std::make_unique<VeltraSDK>(0);
    auto second = std::make_unique<VeltraSDK>(0);
    EXPECT_EQ(hid.initCalls(), 2U);
    first.reset();
    EXPECT_EQ(hid.exitCalls(), 1U);
    second.reset();
    EXPECT_EQ(hid.initCalls(), 2U);
    EXPECT_EQ(hid.exitCalls(), 2U);
}

} // namespace
