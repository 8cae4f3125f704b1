// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "virtual-adapter/AdapterFixture.hpp"

#include <algorithm>

using virtual_adapter::AdapterFixture;
using virtual_adapter::Frame;

namespace {

using UartModelSetUp = AdapterFixture;

/// Powered, and initialised at 115,200 bit/s, no flow control, no parity, 8 data bits, 1 stop bit.
class UartModel : public AdapterFixture {
protected:
    explicit UartModel(
        const virtual_adapter::AdapterVariant& variant = virtual_adapter::fullSpeedVariant)
        : AdapterFixture(virtual_adapter::factoryBoard(), variant) {
        powerOn();
        EXPECT_EQ(response({0x01, 0x00, 0x02, 0x10, 7, 0, 0, 8, 1}),
                  (Frame{0x01, 0x00, 0x02, 0x10, 0x00, 0x00}));
    }

    /// The sizes of the frames that follow a message of @p length bytes, its response first.
    std::vector<size_t> frameSizes(uint16_t length) {
        Frame request{0x01,
                      0x00,
                      0x05,
                      0x10,
                      virtual_adapter::lowByte(length),
                      virtual_adapter::highByte(length)};
        request.resize(request.size() + length, 0x55);
        std::vector<size_t> sizes;
        for (const Frame& frame : frames(request)) {
            sizes.push_back(frame.size());
        }
        return sizes;
    }
};

class HighSpeedUartModel : public UartModel {
protected:
    HighSpeedUartModel() : UartModel(virtual_adapter::highSpeedVariant) {}
};

TEST_F(UartModel, TheLongestMessageComesBackIn1214Notifications) {
    const std::vector<size_t> sizes = frameSizes(65535);
    EXPECT_EQ(sizes.size(), 1U + 1214U);
    EXPECT_LE(*std::max_element(sizes.begin(), sizes.end()), 62U) << "each is one report";
}

TEST_F(UartModelSetUp, EveryCommandIsRefusedWithoutTheIoVoltage) {
    EXPECT_EQ(status({0x01, 0x00, 0x02, 0x10, 7, 0, 0, 8, 1}), 0x0004U);
    EXPECT_EQ(status({0x01, 0x00, 0x03, 0x10, 7, 0, 0, 8, 1}), 0x0004U);
    EXPECT_EQ(status({0x01, 0x00, 0x05, 0x10, 1, 0, 'A'}), 0x0004U);
}

TEST_F(UartModelSetUp, AUartThatIsNotInitialisedRefusesParametersAndMessages) {
    powerOn();
    EXPECT_EQ(response({0x01, 0x00, 0x03, 0x10, 7, 0, 0, 8, 1}),
              (Frame{0x01, 0x00, 0x03, 0x10, 0x05, 0x00}));
    EXPECT_EQ(response({0x01, 0x00, 0x05, 0x10, 1, 0, 'A'}),
              (Frame{0x01, 0x00, 0x05, 0x10, 0x05, 0x00}));
}

TEST_F(UartModel, EveryKnownValueIsAccepted) {
    for (const uint8_t command : {uint8_t{0x02}, uint8_t{0x03}}) {
        for (uint8_t baudRate = 0; baudRate <= 10; ++baudRate) {
            EXPECT_EQ(status({0x01, 0x00, command, 0x10, baudRate, 0, 0, 8, 1}), 0x0000U);
        }
        for (uint8_t dataSize = 5; dataSize <= 8; ++dataSize) {
            EXPECT_EQ(status({0x01, 0x00, command, 0x10, 7, 1, 1, dataSize, 2}), 0x0000U);
        }
        EXPECT_EQ(status({0x01, 0x00, command, 0x10, 7, 0, 2, 8, 1}), 0x0000U);
    }
}

TEST_F(UartModel, UnknownValuesAreRefused) {
    for (const uint8_t command : {uint8_t{0x02}, uint8_t{0x03}}) {
        for (const Frame& request : {
                 Frame{0x01, 0x00, command, 0x10, 11, 0, 0, 8, 1},
                 Frame{0x01, 0x00, command, 0x10, 7, 2, 0, 8, 1},
                 Frame{0x01, 0x00, command, 0x10, 7, 0, 3, 8, 1},
                 Frame{0x01, 0x00, command, 0x10, 7, 0, 0, 4, 1},
                 Frame{0x01, 0x00, command, 0x10, 7, 0, 0, 9, 1},
                 Frame{0x01, 0x00, command, 0x10, 7, 0, 0, 8, 0},
                 Frame{0x01, 0x00, command, 0x10, 7, 0, 0, 8, 3},
             }) {
            EXPECT_EQ(status(request), 0x0003U) << testing::PrintToString(request);
        }
    }
}

TEST_F(UartModel, RequestsOfAnotherLengthAreMalformed) {
    for (const Frame& request : {
             Frame{0x01, 0x00, 0x02, 0x10, 7, 0, 0, 8},
             Frame{0x01, 0x00, 0x02, 0x10, 7, 0, 0, 8, 1, 0},
             Frame{0x01, 0x00, 0x03, 0x10, 7, 0, 0, 8},
             Frame{0x01, 0x00, 0x03, 0x10, 7, 0, 0, 8, 1, 0},
             Frame{0x01, 0x00, 0x05, 0x10, 2, 0, 'A'},
             Frame{0x01, 0x00, 0x05, 0x10, 1, 0, 'A', 'B'},
             Frame{0x01, 0x00, 0x05, 0x10, 1},
         }) {
        EXPECT_EQ(status(request), 0x0002U) << testing::PrintToString(request);
    }
}

TEST_F(UartModel, AMessageComesBackBehindItsResponse) {
    EXPECT_EQ(frames({0x01, 0x00, 0x05, 0x10, 3, 0, 'A', 'B', 0xFF}),
              (std::vector<Frame>{
                  {0x01, 0x00, 0x05, 0x10, 0x00, 0x00},
                  {0x00, 0x00, 0x81, 0x10, 0x00, 0x00, 0x03, 0x00, 'A', 'B', 0xFF},
              }));
}

TEST_F(UartModel, AnEmptyMessageSucceedsAndBringsNothingBack) {
    EXPECT_EQ(response({0x01, 0x00, 0x05, 0x10, 0, 0}),
              (Frame{0x01, 0x00, 0x05, 0x10, 0x00, 0x00}));
}

TEST_F(UartModel, ALongMessageComesBackInNotificationsThatFitOneReport) {
    EXPECT_EQ(frameSizes(54), (std::vector<size_t>{6, 62}));
    EXPECT_EQ(frameSizes(55), (std::vector<size_t>{6, 62, 9}));
    EXPECT_EQ(frameSizes(120), (std::vector<size_t>{6, 62, 62, 20}));
}

TEST_F(HighSpeedUartModel, ALongMessageComesBackInNotificationsBelow256Bytes) {
    EXPECT_EQ(frameSizes(240), (std::vector<size_t>{6, 248}));
    EXPECT_EQ(frameSizes(500), (std::vector<size_t>{6, 248, 248, 28}));
}

TEST_F(UartModel, TheChunksKeepTheOrderOfTheBytes) {
    Frame request{0x01, 0x00, 0x05, 0x10, 56, 0};
    for (uint8_t byte = 0; byte < 56; ++byte) {
        request.push_back(byte);
    }
    const std::vector<Frame> answered = frames(request);
    ASSERT_EQ(answered.size(), 3U);
    EXPECT_EQ(answered[1].at(6), 54);
    EXPECT_EQ(answered[1].at(8), 0);
    EXPECT_EQ(answered[1].back(), 53);
    EXPECT_EQ(answered[2], (Frame{0x00, 0x00, 0x81, 0x10, 0x00, 0x00, 0x02, 0x00, 54, 55}));
}

TEST_F(UartModel, FewerDataBitsCutTheCharacters) {
    const std::vector<std::pair<uint8_t, uint8_t>> masks{
        {5, 0x1F}, {6, 0x3F}, {7, 0x7F}, {8, 0xFF}};
    for (const auto& [dataSize, mask] : masks) {
        status({0x01, 0x00, 0x03, 0x10, 7, 0, 0, dataSize, 1});
        EXPECT_EQ(frames({0x01, 0x00, 0x05, 0x10, 1, 0, 0xFF}).back(),
                  (Frame{0x00, 0x00, 0x81, 0x10, 0x00, 0x00, 0x01, 0x00, mask}));
    }
}

TEST_F(UartModel, RefusedParametersLeaveTheOldOnesInForce) {
    status({0x01, 0x00, 0x03, 0x10, 7, 0, 0, 5, 3});
    EXPECT_EQ(frames({0x01, 0x00, 0x05, 0x10, 1, 0, 0xFF}).back(),
              (Frame{0x00, 0x00, 0x81, 0x10, 0x00, 0x00, 0x01, 0x00, 0xFF}));
}

} // namespace
