/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

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

/* What depends on the width of an address: its values on hosts of 64 and of 32 bits. */
#define BY_WIDTH(on64, on32) (sizeof(void*) == 8 ? (on64) : (on32))

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

EXPECT_SIZE(I3cIbiData, BY_WIDTH(24, 12));
EXPECT_FIELD(I3cIbiData, address, 0, 1);
EXPECT_FIELD(I3cIbiData, payload, BY_WIDTH(8, 4), BY_WIDTH(8, 4));
EXPECT_FIELD(I3cIbiData, payloadLength, BY_WIDTH(16, 8), BY_WIDTH(8, 4));

EXPECT_SIZE(GpioData, 1);
EXPECT_FIELD(GpioData, value, 0, 1);

EXPECT_SIZE(UartRxData, BY_WIDTH(16, 8));
EXPECT_FIELD(UartRxData, data, 0, BY_WIDTH(8, 4));
EXPECT_FIELD(UartRxData, length, BY_WIDTH(8, 4), BY_WIDTH(8, 4));

EXPECT_SIZE(Notification, BY_WIDTH(88, 48));
EXPECT_FIELD(Notification, kind, 0, 4);
EXPECT_FIELD(Notification, data, BY_WIDTH(8, 4), BY_WIDTH(8, 4));
EXPECT_FIELD(Notification, size, BY_WIDTH(16, 8), BY_WIDTH(8, 4));
EXPECT_FIELD(Notification, i3cHotJoinView, BY_WIDTH(24, 12), 9);
EXPECT_FIELD(Notification, i3cIbiView, BY_WIDTH(40, 24), BY_WIDTH(24, 12));
EXPECT_FIELD(Notification, gpioView, BY_WIDTH(64, 36), 1);
EXPECT_FIELD(Notification, uartRxView, BY_WIDTH(72, 40), BY_WIDTH(16, 8));

EXPECT_SIZE(VeltraSDK_QueuedNotification, 24);
EXPECT_FIELD(VeltraSDK_QueuedNotification, timeNanoseconds, 0, 8);
EXPECT_FIELD(VeltraSDK_QueuedNotification, lostBefore, 8, 8);
EXPECT_FIELD(VeltraSDK_QueuedNotification, kind, 16, 4);
EXPECT_FIELD(VeltraSDK_QueuedNotification, frameSize, 20, 4);

EXPECT_SIZE(VeltraSDK_DeviceInfo, BY_WIDTH(80, 40));
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString1, 0, BY_WIDTH(8, 4));
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString1Length, BY_WIDTH(8, 4), BY_WIDTH(8, 4));
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString2, BY_WIDTH(16, 8), BY_WIDTH(8, 4));
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString2Length, BY_WIDTH(24, 12), BY_WIDTH(8, 4));
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString3, BY_WIDTH(32, 16), BY_WIDTH(8, 4));
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString3Length, BY_WIDTH(40, 20), BY_WIDTH(8, 4));
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString4, BY_WIDTH(48, 24), BY_WIDTH(8, 4));
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString4Length, BY_WIDTH(56, 28), BY_WIDTH(8, 4));
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString5, BY_WIDTH(64, 32), BY_WIDTH(8, 4));
EXPECT_FIELD(VeltraSDK_DeviceInfo, usbString5Length, BY_WIDTH(72, 36), BY_WIDTH(8, 4));
