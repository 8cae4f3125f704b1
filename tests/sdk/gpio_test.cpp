#include "support/SdkTest.hpp"

namespace {

using GpioTest = test_support::SdkTest;
INSTANTIATE_ON_BOTH_MODELS(GpioTest);

TEST_P(GpioTest, ReadingAPinStoresResponseByteSix) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05},
           {0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01});
    GpioLogicLevel level = GpioLogicLevel_Low;
    EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0);
    EXPECT_EQ(level, GpioLogicLevel_High);
}

TEST_P(GpioTest, ReadingAPinStoresTheLevelWhateverTheStatus) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05},
           {0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x34, 0x12, 0x01});
    GpioLogicLevel level = GpioLogicLevel_Low;
    EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0x1234);
    EXPECT_EQ(level, GpioLogicLevel_High);
}

} // namespace
