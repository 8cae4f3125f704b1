/* The widths, sizes and offsets of every shared type as literal numbers. Included by a C and by a
   C++ file, so that both languages are held to the same ones; compiling is passing. */
#include <veltrasdk/veltrasdk.h>

#include <assert.h>
#include <stddef.h>

#ifdef __cplusplus
#include <veltrasdk/Notification.hpp>
#define SIZE_OF_FIELD(Type, field) sizeof(Type::field)
#else
#define SIZE_OF_FIELD(Type, field) sizeof(((Type*)0)->field)
#endif

#define EXPECT_SIZE(Type, bytes) static_assert(sizeof(Type) == (bytes), #Type)
#define EXPECT_FIELD(Type, field, offset, bytes)                                                   \
    static_assert(offsetof(Type, field) == (offset), #field);                                      \
    static_assert(SIZE_OF_FIELD(Type, field) == (bytes), #field)

EXPECT_SIZE(ResultCode, 2);
static_assert(ResultCode_Success == 0x0000, "Success");
static_assert(ResultCode_NoResponse == 0x2000, "NoResponse");
static_assert(ResultCode_NotConnected == 0x4000, "NotConnected");
static_assert(ResultCode_UnexpectedResponse == 0x6000, "UnexpectedResponse");
static_assert(ResultCode_InvalidArgument == 0x8000, "InvalidArgument");
static_assert(ResultCode_ShortResponse == 0xA000, "ShortResponse");

EXPECT_SIZE(SpiBitOrder, 1);
EXPECT_SIZE(SpiMode, 1);
EXPECT_SIZE(SpiDataWidth, 1);
EXPECT_SIZE(SpiChipSelect, 1);
EXPECT_SIZE(SpiChipSelectPolarity, 1);

EXPECT_SIZE(UartBaudRate, 1);
EXPECT_SIZE(UartHwHandshake, 1);
EXPECT_SIZE(UartParity, 1);
EXPECT_SIZE(UartDataSize, 1);
EXPECT_SIZE(UartStopBit, 1);

EXPECT_SIZE(GpioPinNumber, 1);
EXPECT_SIZE(GpioFunctionality, 1);
EXPECT_SIZE(GpioLogicLevel, 1);
EXPECT_SIZE(GpioTriggerType, 1);

EXPECT_SIZE(I3cTargetConfiguration, 1);
EXPECT_SIZE(I3cPushPullRate, 4);
EXPECT_SIZE(I3cOpenDrainTransferRate, 4);
EXPECT_SIZE(I2cTransferRate, 4);
EXPECT_SIZE(I3cDriveStrength, 4);
EXPECT_SIZE(I3cTransferFlags, 4);
EXPECT_SIZE(I3cTransferDirection, 4);
EXPECT_SIZE(I3cTransferMode, 4);
EXPECT_SIZE(I3cCccType, 4);
EXPECT_SIZE(CCC, 4);
EXPECT_SIZE(I3cTargetResetDefByte, 4);

EXPECT_SIZE(I3cTargetInfo, 16);
EXPECT_FIELD(I3cTargetInfo, staticAddress, 0, 1);
EXPECT_FIELD(I3cTargetInfo, dynamicAddress, 1, 1);
EXPECT_FIELD(I3cTargetInfo, pid, 2, 6);
EXPECT_FIELD(I3cTargetInfo, bcr, 8, 1);
EXPECT_FIELD(I3cTargetInfo, dcr, 9, 1);
EXPECT_FIELD(I3cTargetInfo, maxWriteLength, 10, 2);
EXPECT_FIELD(I3cTargetInfo, maxReadLength, 12, 2);
EXPECT_FIELD(I3cTargetInfo, maxIbiPayloadSize, 14, 1);
EXPECT_FIELD(I3cTargetInfo, configuration, 15, 1);

EXPECT_SIZE(NotificationKind, 4);
static_assert(NotificationKind_I3cHotJoin == 0, "I3cHotJoin");
static_assert(NotificationKind_I3cIbi == 1, "I3cIbi");
static_assert(NotificationKind_Gpio == 2, "Gpio");
static_assert(NotificationKind_UartRx == 3, "UartRx");
static_assert(NotificationKind_Unknown == 4, "Unknown");

EXPECT_SIZE(I3cHotJoinData, 9);
EXPECT_FIELD(I3cHotJoinData, pid, 0, 6);
EXPECT_FIELD(I3cHotJoinData, bcrDcr, 6, 2);
EXPECT_FIELD(I3cHotJoinData, dynamicAddress, 8, 1);

EXPECT_SIZE(I3cIbiData, 24);
EXPECT_FIELD(I3cIbiData, address, 0, 1);
EXPECT_FIELD(I3cIbiData, payload, 8, 8);
EXPECT_FIELD(I3cIbiData, payloadLength, 16, 8);

EXPECT_SIZE(GpioData, 1);
EXPECT_FIELD(GpioData, value, 0, 1);

EXPECT_SIZE(UartRxData, 16);
EXPECT_FIELD(UartRxData, data, 0, 8);
EXPECT_FIELD(UartRxData, length, 8, 8);

EXPECT_SIZE(Notification, 88);
EXPECT_FIELD(Notification, kind, 0, 4);
EXPECT_FIELD(Notification, data, 8, 8);
EXPECT_FIELD(Notification, size, 16, 8);
EXPECT_FIELD(Notification, i3cHotJoinView, 24, 9);
EXPECT_FIELD(Notification, i3cIbiView, 40, 24);
EXPECT_FIELD(Notification, gpioView, 64, 1);
EXPECT_FIELD(Notification, uartRxView, 72, 16);

EXPECT_SIZE(VeltraSDK_DeviceInfo, 80);
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString1, 0, 8);
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString1Length, 8, 8);
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString2, 16, 8);
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString2Length, 24, 8);
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString3, 32, 8);
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString3Length, 40, 8);
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString4, 48, 8);
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString4Length, 56, 8);
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString5, 64, 8);
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString5Length, 72, 8);
