// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/VeltraDriver.hpp"
#include "support/ThreadStart.hpp"
#include "support/Variant.hpp"

#include <cerrno>
#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <gtest/gtest.h>

using namespace test_support;

namespace {

const ScriptedDevice mouse{"1-9:1.0", 0x046D, 0xC077, L"MOUSE"};

ScriptedDevice adapter(std::optional<std::string> path, std::optional<std::wstring> serialNumber,
                       const Variant& variant = fullSpeed) {
    return {std::move(path), vendorId, variant.productId, std::move(serialNumber)};
}

class VeltraDriverTest : public testing::Test {
protected:
    bool open(const std::string& path = "", const std::string& serialNumber = "") {
        return driver.open(path, serialNumber);
    }

    void expectClosed() {
        EXPECT_EQ(hid.openDevices(), 0U);
        EXPECT_EQ(hid.readCalls(), 0U) << "no polling thread may run";
        EXPECT_FALSE(driver.sendCommand({0x01}));
        EXPECT_TRUE(hid.writes().empty());
    }

    ScriptedHid hid;
    VeltraDriver driver;
};

// The list of models.

TEST(VeltraDriver, TheFullSpeedModelHasReportsOf64Bytes) {
    const auto* const variant = VeltraDriver::findMervoDeviceCharacteristics(0x1209, 0x0001);
    ASSERT_NE(variant, nullptr);
    EXPECT_EQ(variant->vendorId, 0x1209);
    EXPECT_EQ(variant->productId, 0x0001);
    EXPECT_EQ(variant->endpointSize, 64U);
}

TEST(VeltraDriver, TheHighSpeedModelHasReportsOf1024Bytes) {
    const auto* const variant = VeltraDriver::findMervoDeviceCharacteristics(0x1209, 0x0002);
    ASSERT_NE(variant, nullptr);
    EXPECT_EQ(variant->vendorId, 0x1209);
    EXPECT_EQ(variant->productId, 0x0002);
    EXPECT_EQ(variant->endpointSize, 1024U);
}

TEST(VeltraDriver, OtherIdentifiersAreNoModel) {
    EXPECT_EQ(VeltraDriver::findMervoDeviceCharacteristics(0x1209, 0x0000), nullptr);
    EXPECT_EQ(VeltraDriver::findMervoDeviceCharacteristics(0x1209, 0x0003), nullptr);
    EXPECT_EQ(VeltraDriver::findMervoDeviceCharacteristics(0x120A, 0x0001), nullptr);
    EXPECT_EQ(VeltraDriver::findMervoDeviceCharacteristics(0x0001, 0x1209), nullptr);
}

// Serial numbers.

TEST(CompareSerial, EqualTextsAreEqual) {
    EXPECT_TRUE(compareSerial("VA-0001", L"VA-0001"));
    EXPECT_TRUE(compareSerial("", L""));
}

TEST(CompareSerial, AMissingSerialNumberEqualsNothing) {
    EXPECT_FALSE(compareSerial("VA-0001", nullptr));
    EXPECT_FALSE(compareSerial("", nullptr));
}

TEST(CompareSerial, TheWholeTextIsComparedExactly) {
    EXPECT_FALSE(compareSerial("va-0001", L"VA-0001"));
    EXPECT_FALSE(compareSerial("VA-000", L"VA-0001"));
    EXPECT_FALSE(compareSerial("VA-0001", L"VA-000"));
    EXPECT_FALSE(compareSerial("VA-0001 ", L"VA-0001"));
    EXPECT_FALSE(compareSerial(" VA-0001", L"VA-0001"));
    EXPECT_FALSE(compareSerial(std::string("VA-0001\0", 8), L"VA-0001"));
}

TEST(CompareSerial, CodePointsBeyondAsciiAreComparedAsUtf8) {
    EXPECT_TRUE(compareSerial("\x7F", L"\x7F"));
    EXPECT_TRUE(compareSerial("\xC2\x80", L"\x80"));
    EXPECT_TRUE(compareSerial("\xC3\xA9", L"\xE9"));
    EXPECT_TRUE(compareSerial("\xDF\xBF", L"\x7FF"));
    EXPECT_TRUE(compareSerial("\xE0\xA0\x80", L"\x800"));
    EXPECT_TRUE(compareSerial("\xEF\xBF\xBD", L"\xFFFD"));
    EXPECT_FALSE(compareSerial("\xE9", L"\xE9")) << "Latin-1 is not UTF-8";
}

TEST(CompareSerial, CodePointsBeyondTheBasicPlaneAreFourBytes) {
    EXPECT_TRUE(compareSerial("\xF0\x90\x80\x80", L"\x10000"));
    EXPECT_TRUE(compareSerial("A\xF0\x9F\x94\x8C", L"A\x1F50C"));
    EXPECT_TRUE(compareSerial("\xF4\x8F\xBF\xBF", L"\x10FFFF"));
}

TEST(CompareSerial, AByteOrderMarkIsACharacterLikeAnyOther) {
    EXPECT_TRUE(compareSerial("\xEF\xBB\xBF"
                              "A",
                              L"\xFEFF"
                              L"A"));
    EXPECT_FALSE(compareSerial("A", L"\xFEFF"
                                    L"A"));
    EXPECT_FALSE(compareSerial("\xEF\xBB\xBF"
                               "A",
                               L"A"));
}

TEST(CompareSerial, ALoneSurrogateIsComparedLikeAnyOtherCharacter) {
    EXPECT_TRUE(compareSerial("A\xED\xA0\x80", std::wstring{L'A', wchar_t{0xD800}}.c_str()));
    EXPECT_TRUE(compareSerial("\xED\xBF\xBF", std::wstring(1, wchar_t{0xDFFF}).c_str()));
    EXPECT_FALSE(compareSerial("A", std::wstring{L'A', wchar_t{0xD800}}.c_str()));
}

TEST(CompareSerial, ACodePointBeyondUnicodeIsARangeError) {
    for (const wchar_t codePoint : {wchar_t{0x110000}, wchar_t{0x7FFFFFFF}}) {
        const std::wstring serialNumber{L'A', codePoint};
        try {
            compareSerial("A", serialNumber.c_str());
            ADD_FAILURE() << "no exception";
        } catch (const std::range_error& error) {
            EXPECT_STREQ(error.what(), "wstring_convert::to_bytes");
        }
    }
}

// Finding and opening.

TEST_F(VeltraDriverTest, NothingOpensWithoutAnyDevice) {
    EXPECT_FALSE(open());
    EXPECT_EQ(hid.enumerateCalls(), 1U);
    expectClosed();
}

TEST_F(VeltraDriverTest, ADeviceWithOtherIdentifiersIsNeverOpened) {
    hid.attach(mouse);
    EXPECT_FALSE(open());
    EXPECT_FALSE(open(*mouse.path));
    EXPECT_FALSE(open("", "MOUSE"));
    EXPECT_FALSE(open(*mouse.path, "MOUSE"));
    expectClosed();
}

TEST_F(VeltraDriverTest, TheFirstKnownAdapterInTheOrderOfTheListOpens) {
    hid.attach(mouse);
    hid.attach(adapter("1-3:1.0", L"VA-0003", highSpeed));
    hid.attach(adapter("1-1:1.0", L"VA-0001", fullSpeed));
    EXPECT_TRUE(open());
    EXPECT_EQ(hid.openedPath(), "1-3:1.0");
    EXPECT_EQ(driver.getEndpointSize(), 1024U);
}

TEST_F(VeltraDriverTest, TheAdapterWithThePathOpens) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    hid.attach(adapter("1-2:1.0", L"VA-0002"));
    EXPECT_TRUE(open("1-2:1.0"));
    EXPECT_EQ(hid.openedPath(), "1-2:1.0");
}

TEST_F(VeltraDriverTest, APathThatIsNotExactlyEqualOpensNothing) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    for (const char* const path : {"1-1:1", "1-1:1.0 ", "1-1:1.00", "/1-1:1.0", "1-1:1.1"}) {
        EXPECT_FALSE(open(path)) << path;
    }
    expectClosed();
}

TEST_F(VeltraDriverTest, TheAdapterWithTheSerialNumberOpens) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    hid.attach(adapter("1-2:1.0", L"VA-0002", highSpeed));
    EXPECT_TRUE(open("", "VA-0002"));
    EXPECT_EQ(hid.openedPath(), "1-2:1.0");
    EXPECT_EQ(driver.getEndpointSize(), 1024U);
}

TEST_F(VeltraDriverTest, TheFirstOfTwoEqualSerialNumbersOpens) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    hid.attach(adapter("1-2:1.0", L"VA-0001"));
    EXPECT_TRUE(open("", "VA-0001"));
    EXPECT_EQ(hid.openedPath(), "1-1:1.0");
}

TEST_F(VeltraDriverTest, ASerialNumberThatDiffersInLetterCaseOpensNothing) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    EXPECT_FALSE(open("", "va-0001"));
    EXPECT_FALSE(open("", "VA-000"));
    expectClosed();
}

TEST_F(VeltraDriverTest, AnotherDeviceWithTheSerialNumberIsPassedOver) {
    hid.attach({"1-9:1.0", 0x046D, 0xC077, L"VA-0001"});
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    EXPECT_TRUE(open("", "VA-0001"));
    EXPECT_EQ(hid.openedPath(), "1-1:1.0");
}

TEST_F(VeltraDriverTest, AnAdapterWithoutASerialNumberIsFoundByPathOnly) {
    hid.attach(adapter("1-1:1.0", std::nullopt));
    EXPECT_FALSE(open("", "VA-0001"));
    EXPECT_TRUE(open("1-1:1.0"));
}

TEST_F(VeltraDriverTest, AnAdapterListedWithoutAPathIsPassedOver) {
    hid.attach(adapter(std::nullopt, L"VA-0001"));
    hid.attach(adapter("1-2:1.0", L"VA-0001"));
    EXPECT_TRUE(open());
    EXPECT_EQ(hid.openedPath(), "1-2:1.0");
}

TEST_F(VeltraDriverTest, NothingOpensWhereOnlyAnAdapterWithoutAPathIsListed) {
    hid.attach(adapter(std::nullopt, L"VA-0001"));
    EXPECT_FALSE(open());
    EXPECT_FALSE(open("1-1:1.0"));
    EXPECT_FALSE(open("", "VA-0001"));
    expectClosed();
}

TEST_F(VeltraDriverTest, ASerialNumberBeyondTheBasicPlaneIsFound) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    hid.attach(adapter("1-2:1.0", L"\u00E9\u20AC\U0001F50C"));
    EXPECT_TRUE(open("", "\u00E9\u20AC\U0001F50C"));
    EXPECT_EQ(hid.openedPath(), "1-2:1.0");
}

TEST_F(VeltraDriverTest, PathAndSerialNumberMustBothMatch) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    hid.attach(adapter("1-2:1.0", L"VA-0002"));
    EXPECT_FALSE(open("1-1:1.0", "VA-0002"));
    EXPECT_TRUE(open("1-2:1.0", "VA-0002"));
    EXPECT_EQ(hid.openedPath(), "1-2:1.0");
}

TEST_F(VeltraDriverTest, ASerialNumberThatCannotBeConvertedIsARangeErrorAndOpensNothing) {
    hid.attach({"1-9:1.0", 0x046D, 0xC077, std::wstring(1, wchar_t{0x110000})});
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    try {
        open("", "VA-0001");
        ADD_FAILURE() << "no exception";
    } catch (const std::range_error& error) {
        EXPECT_STREQ(error.what(), "wstring_convert::to_bytes");
    }
    expectClosed();
}

TEST_F(VeltraDriverTest, ASerialNumberThatCannotBeConvertedDoesNotMatterToAPath) {
    hid.attach(adapter("1-9:1.0", std::wstring(1, wchar_t{0x110000})));
    EXPECT_TRUE(open("1-9:1.0"));
}

TEST_F(VeltraDriverTest, ASerialNumberFoundBeforeOneThatCannotBeConvertedOpens) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    hid.attach(adapter("1-9:1.0", std::wstring(1, wchar_t{0x110000})));
    EXPECT_TRUE(open("", "VA-0001"));
}

TEST_F(VeltraDriverTest, TheEnumerationIsFreedBeforeTheAdapterIsOpened) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    ASSERT_TRUE(open());
    EXPECT_EQ(hid.listsOutAtOpening(), 0U);
}

TEST_F(VeltraDriverTest, AnAdapterThatCannotBeOpenedLeavesTheDriverClosed) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    hid.failNth(HidCall::OpenPath, 1);
    EXPECT_FALSE(open());
    expectClosed();
    EXPECT_TRUE(open());
}

TEST_F(VeltraDriverTest, APollingThreadThatCannotBeStartedIsASystemErrorAndLeavesTheDriverClosed) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    {
        const ThreadStart never([](const auto&) { return EAGAIN; });
        EXPECT_THROW(open(), std::system_error);
    }
    expectClosed();
    EXPECT_TRUE(open());
}

TEST_F(VeltraDriverTest, AnOpenDriverStaysAsItIs) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    hid.attach(adapter("1-2:1.0", L"VA-0002", highSpeed));
    ASSERT_TRUE(open());
    EXPECT_TRUE(open());
    EXPECT_TRUE(open("1-2:1.0"));
    EXPECT_TRUE(open("no such path", "no such serial number"));
    EXPECT_EQ(hid.enumerateCalls(), 1U);
    EXPECT_EQ(hid.openDevices(), 1U);
    EXPECT_EQ(driver.getEndpointSize(), 64U);
}

// Closing.

TEST_F(VeltraDriverTest, ClosingAClosedDriverDoesNothing) {
    driver.close();
    expectClosed();
}

TEST_F(VeltraDriverTest, AClosedDriverReadsNoMore) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    ASSERT_TRUE(open());
    ASSERT_TRUE(hid.waitForReads(1));
    driver.close();
    EXPECT_EQ(hid.openDevices(), 0U);
    const size_t reads = hid.readCalls();
    EXPECT_FALSE(driver.sendCommand({0x01}));
    driver.close();
    EXPECT_EQ(hid.readCalls(), reads);
}

TEST_F(VeltraDriverTest, ClosingWaitsForTheReceiverThatRuns) {
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    std::promise<void> entered;
    std::promise<void> mayReturn;
    driver.onResponse([&](const Bytes&) {
        entered.set_value();
        mayReturn.get_future().wait();
    });
    ASSERT_TRUE(open());
    hid.deliver(fullSpeed.input({0x01}));
    entered.get_future().wait();
    auto closing = std::async(std::launch::async, [&] { driver.close(); });
    EXPECT_EQ(closing.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    EXPECT_EQ(hid.openDevices(), 1U);
    mayReturn.set_value();
    closing.get();
    EXPECT_EQ(hid.openDevices(), 0U);
}

TEST_F(VeltraDriverTest, AClosedDriverOpensTheOtherModel) {
    hid.attach(adapter("1-1:1.0", L"VA-0001", fullSpeed));
    hid.attach(adapter("1-2:1.0", L"VA-0002", highSpeed));
    ASSERT_TRUE(open("1-1:1.0"));
    EXPECT_TRUE(driver.sendCommand({0x01}));
    driver.close();
    ASSERT_TRUE(open("1-2:1.0"));
    EXPECT_TRUE(driver.sendCommand({0x02}));
    const std::vector<Bytes> expected{fullSpeed.output({0x01}), highSpeed.output({0x02})};
    EXPECT_EQ(hid.writes(), expected);
    ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 1));
    EXPECT_EQ(hid.lastReadLength(), 1024U);
}

TEST(VeltraDriver, EveryDriverInitialisesHidapiAndShutsItDown) {
    ScriptedHid hid;
    auto first = std::make_unique<VeltraDriver>();
    auto second = std::make_unique<VeltraDriver>();
    EXPECT_EQ(hid.initCalls(), 2U);
    EXPECT_EQ(hid.exitCalls(), 0U);
    second.reset();
    EXPECT_EQ(hid.exitCalls(), 1U) << "also while the other driver exists";
    first.reset();
    EXPECT_EQ(hid.exitCalls(), 2U);
}

TEST(VeltraDriver, DestructionClosesAnOpenDriver) {
    ScriptedHid hid;
    hid.attach(adapter("1-1:1.0", L"VA-0001"));
    auto driver = std::make_unique<VeltraDriver>();
    ASSERT_TRUE(driver->open("", ""));
    driver.reset();
    EXPECT_EQ(hid.openDevices(), 0U);
    EXPECT_EQ(hid.exitCalls(), 1U);
}

} // namespace
