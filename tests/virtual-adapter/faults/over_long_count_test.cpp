// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/FrameFaults.hpp"

#include "virtual-adapter/AdapterFixture.hpp"

using virtual_adapter::AdapterFixture;
using virtual_adapter::FaultKind;
using virtual_adapter::FaultSet;
using virtual_adapter::Frame;
using virtual_adapter::FrameFaults;
using virtual_adapter::OutgoingFrame;

namespace {

/// What the model marks as a count, as the fault shows it. Every bus is in operation.
class OverLongCount : public AdapterFixture {
protected:
    OverLongCount() {
        powerOn();
        for (const Frame& request : {
                 Frame{0x01, 0x00, 0x01, 0x09, 0x01, 0xA0, 0x86, 0x01, 0x00, 0x00},
                 Frame{0x01, 0x00, 0x02, 0x08, 0x01, 0x02},
                 Frame{0x01, 0x00, 0x01, 0x0D, 0, 0, 8, 0, 0, 0x40, 0x42, 0x0F, 0x00},
                 Frame{0x01, 0x00, 0x02, 0x10, 7, 0, 0, 8, 1},
                 Frame{0x01, 0x00, 0x01, 0x14, 0, 0},
                 Frame{0x01, 0x00, 0x04, 0x04, 0xE4, 0x0C},
                 Frame{0x01, 0x00, 0x01, 0x19, 0, 0, 0, 0},
                 Frame{0x01, 0x00, 0x04, 0x19, 1, // one record: the sensor
                       0x48, 0x30, 0,    0,    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
             }) {
            EXPECT_EQ(status(request), 0x0000U) << testing::PrintToString(request);
        }
    }

    /// What leaves the adapter from the request on at which the fault struck.
    std::vector<Frame> spoilt(const Frame& request) {
        std::vector<Frame> frames;
        FaultSet striking;
        striking.insert(FaultKind::OverLongCount);
        for (const OutgoingFrame& outgoing : faults.apply(striking, adapter.handle(request))) {
            frames.push_back(outgoing.frame);
        }
        return frames;
    }

private:
    FrameFaults faults;
};

using Frames = std::vector<Frame>;

TEST_F(OverLongCount, OfAnIdentityStringIsItsLengthEvenWhenItIsRefused) {
    EXPECT_EQ(spoilt({3, 0, 0x07, 0x04, 1}),
              (Frames{{3, 0, 0x07, 0x04, 0, 0, 0xFF, 'V', 'e', 'l', 't', 'r', 'a'}}));
    EXPECT_EQ(spoilt({3, 0, 0x07, 0x04, 6}), (Frames{{3, 0, 0x07, 0x04, 3, 0, 0xFF}}));
}

TEST_F(OverLongCount, OfAnI2cReadIsItsLength) {
    EXPECT_EQ(spoilt({3, 0, 0x05, 0x09, 1, 1, 0, 0x50, 1, 0, 0, 0, 0, 0}),
              (Frames{{3, 0, 0x05, 0x09, 0, 0, 1, 0xFF, 0xFF, 'H'}}));
    EXPECT_EQ(spoilt({3, 0, 0x05, 0x09, 1, 1, 0, 0x52, 1, 0, 0, 0, 0, 0}),
              (Frames{{3, 0, 0x05, 0x09, 6, 0}}));
}

TEST_F(OverLongCount, OfAnI2cScanAreBothCountsEvenWhenItIsRefused) {
    EXPECT_EQ(spoilt({3, 0, 0x06, 0x09, 1, 1}),
              (Frames{{3, 0, 0x06, 0x09, 0, 0, 0, 0xFF, 0xFF, 0x48, 0x50, 0x51, 0xA2, 0x01}}));
    EXPECT_EQ(spoilt({3, 0, 0x06, 0x09, 2, 0}), (Frames{{3, 0, 0x06, 0x09, 3, 0, 0, 0xFF, 0xFF}}));
}

TEST_F(OverLongCount, OfAnSpiTransferIsTheLengthReceived) {
    EXPECT_EQ(spoilt({3, 0, 0x04, 0x0D, 1, 0, 2, 0, 0x9F}),
              (Frames{{3, 0, 0x04, 0x0D, 0, 0, 0xFF, 0xFF, 0xFF, 0x56}}));
}

TEST_F(OverLongCount, OfAUartNotificationIsItsLength) {
    EXPECT_EQ(spoilt({3, 0, 0x05, 0x10, 1, 0, 'x'}),
              (Frames{{3, 0, 0x05, 0x10, 0, 0}, {0, 0, 0x81, 0x10, 0, 0, 0xFF, 0xFF, 'x'}}));
}

TEST_F(OverLongCount, OfAGpioLevelThereIsNone) {
    EXPECT_EQ(spoilt({3, 0, 0x03, 0x14, 0}), (Frames{{3, 0, 0x03, 0x14, 0, 0, 0}}));
}

TEST_F(OverLongCount, OfTheI3cDeviceTableIsTheNumberOfRecordsEvenWhenItIsRefused) {
    EXPECT_EQ(spoilt({3, 0, 0x06, 0x19}),
              (Frames{{3,    0,    0x06, 0x19, 0,    0,  0xFF, 0x48, 0x30, 0xFF, 0xFE, 0x00,
                       0x30, 0x10, 0x00, 0x26, 0x63, 64, 0,    64,   0,    8,    0}}));
    EXPECT_EQ(spoilt({3, 0, 0x06, 0x19, 0}), (Frames{{3, 0, 0x06, 0x19, 2, 0, 0xFF}}));
}

TEST_F(OverLongCount, OfAnI3cReadIsTheLengthReceivedNotTheOneAskedFor) {
    EXPECT_EQ(spoilt({3, 0, 0x08, 0x19, 0x30, 1, 0, 1, 0, 0, 0, 0, 1, 0}),
              (Frames{{3, 0, 0x08, 0x19, 0, 0, 1, 0, 0xFF, 0xFF, 0x19}}));
    EXPECT_EQ(spoilt({3, 0, 0x08, 0x19, 0x31, 1, 0, 1, 0, 0, 0, 0, 1, 0}),
              (Frames{{3, 0, 0x08, 0x19, 6, 0, 1, 0, 0xFF, 0xFF}}));
}

TEST_F(OverLongCount, OfACommonCommandCodeIsTheLengthOfItsData) {
    EXPECT_EQ(spoilt({3, 0, 0x09, 0x19, 0x30, 1, 1, 0x8F, 0}),
              (Frames{{3, 0, 0x09, 0x19, 0, 0, 0x30, 0x8F, 0, 0xFF, 0x63}}));
}

TEST_F(OverLongCount, OfAnInterruptIsTheLengthOfItsPayload) {
    status({3, 0, 0x09, 0x19, 0x30, 0, 1, 0x80, 0, 1}); // ENEC
    EXPECT_EQ(
        spoilt({3, 0, 0x08, 0x19, 0x30, 0, 0, 1, 2, 0, 0, 0, 1, 0, 0x42}),
        (Frames{{3, 0, 0x08, 0x19, 0, 0}, {0, 0, 0x81, 0x19, 0, 0, 0x30, 0xFF, 0x42, 0x19, 0x80}}));
}

} // namespace
