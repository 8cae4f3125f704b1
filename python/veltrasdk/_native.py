# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# Written by python/generate.py from the public C headers. Do not edit: change those and run it.
# pylint: disable=invalid-name
"""What the C headers declare: enumerations, records and functions."""

from ctypes import (
    CDLL,
    CFUNCTYPE,
    POINTER,
    Structure,
    c_bool,
    c_char,
    c_int,
    c_int16,
    c_int32,
    c_size_t,
    c_uint16,
    c_uint32,
    c_uint64,
    c_uint8,
    c_char_p,
    c_void_p,
)
from enum import IntEnum, IntFlag
from typing import Any

VERSION = "1.2.3"


class GpioPinNumber(IntEnum):
    """A pin of the adapter."""

    #: Pin 0.
    NUMBER_0 = 0
    #: Pin 1.
    NUMBER_1 = 1
    #: Pin 2.
    NUMBER_2 = 2
    #: Pin 3.
    NUMBER_3 = 3
    #: Pin 4.
    NUMBER_4 = 4
    #: Pin 5.
    NUMBER_5 = 5
    #: Pin 6.
    NUMBER_6 = 6
    #: Pin 7.
    NUMBER_7 = 7


class GpioFunctionality(IntEnum):
    """What a pin is used for."""

    #: Floating input.
    INPUT = 0
    #: Push-pull output; the one that takes a level.
    OUTPUT = 1
    #: Input with pull-up.
    INPUT_PULL_UP = 2
    #: Input with pull-down.
    INPUT_PULL_DOWN = 3
    #: Output that drives low and releases high.
    OPEN_DRAIN_OUTPUT = 4


class GpioLogicLevel(IntEnum):
    """The level of a pin."""

    #: Low.
    LOW = 0
    #: High.
    HIGH = 1


class GpioTriggerType(IntEnum):
    """What makes an armed pin send an interrupt."""

    #: A change from low to high.
    RISING_EDGE = 0
    #: A change from high to low.
    FALLING_EDGE = 1
    #: Any change.
    BOTH_EDGES = 2
    #: The low level.
    LOW_LEVEL = 3
    #: The high level.
    HIGH_LEVEL = 4


class I3cTargetConfiguration(IntEnum):
    """How the controller treats one target; travels as one byte."""

    #: An I3C target whose in-band interrupts are acknowledged and passed on.
    ACCEPT_IBI = 0
    #: An I3C target whose in-band interrupts are refused.
    REJECT_IBI = 1
    #: A legacy I2C device, reached by its static address.
    LEGACY_I2C = 2


class I3cPushPullRate(IntEnum):
    """The SCL rate of push-pull (SDR) phases; its low byte travels."""

    #: 12.5 MHz.
    RATE_12_5_MHZ = 0
    #: 10 MHz.
    RATE_10_MHZ = 1
    #: 8 MHz.
    RATE_8_MHZ = 2
    #: 6 MHz.
    RATE_6_MHZ = 3
    #: 4 MHz.
    RATE_4_MHZ = 4
    #: 2 MHz.
    RATE_2_MHZ = 5
    #: 1 MHz.
    RATE_1_MHZ = 6


class I3cOpenDrainTransferRate(IntEnum):
    """The SCL rate of open-drain phases; its low byte travels."""

    #: 4 MHz.
    RATE_4_MHZ = 0
    #: 2.5 MHz.
    RATE_2_5_MHZ = 1
    #: 1 MHz.
    RATE_1_MHZ = 2
    #: 0.4 MHz.
    RATE_0_4_MHZ = 3


class I2cTransferRate(IntEnum):
    """The SCL rate of legacy I2C transfers on the I3C bus; its low byte travels."""

    #: 1 MHz, Fast-mode Plus.
    RATE_1_MHZ = 0
    #: 0.4 MHz, Fast-mode.
    RATE_0_4_MHZ = 1
    #: 0.1 MHz, Standard-mode.
    RATE_0_1_MHZ = 2


class I3cDriveStrength(IntEnum):
    """The drive strength of the I3C pins; its low byte travels."""

    #: 2 mA.
    STRENGTH_2_MA = 0
    #: 4 mA.
    STRENGTH_4_MA = 1
    #: 8 mA.
    STRENGTH_8_MA = 2
    #: 12 mA.
    STRENGTH_12_MA = 3


class I3cTransferFlags(IntFlag):
    """Options of SDR and legacy I2C transfers; the low five bits travel. Values may be combined."""

    #: No option: the transfer starts with the broadcast address and ends with a STOP.
    NONE = 0
    #: The transfer starts with the target's address instead of the broadcast address 0x7E.
    SKIP_BROADCAST_ADDRESS = 1
    #: The transfer leaves the bus held: the next one begins with a repeated START.
    NO_STOP = 2


class I3cTransferDirection(IntEnum):
    """The direction of a transfer's data phase."""

    #: From the controller to the target.
    WRITE = 0
    #: From the target to the controller.
    READ = 1


class I3cTransferMode(IntEnum):
    """The bus mode of a transfer."""

    #: Single data rate.
    SDR = 0
    #: High data rate, double data rate.
    HDR_DDR = 1
    #: Legacy I2C.
    LEGACY_I2C = 2


class I3cCccType(IntEnum):
    """Whether a Common Command Code carries a defining byte."""

    #: No defining byte.
    WITHOUT_DEFINING_BYTE = 0
    #: One defining byte follows the command code.
    WITH_DEFINING_BYTE = 1


class CCC(IntEnum):
    """The Common Command Codes that the library sends (MIPI I3C Basic v1.1.1, section 5.1.9.3)."""

    #: Enable events, all targets.
    ENEC_BROADCAST = 0
    #: Disable events, all targets.
    DISEC_BROADCAST = 1
    #: Reset dynamic address assignment.
    RSTDAA = 6
    #: Enter dynamic address assignment.
    ENTDAA = 7
    #: Set maximum write length, all targets.
    SETMWL_BROADCAST = 9
    #: Set maximum read length, all targets.
    SETMRL_BROADCAST = 0x0A
    #: Set all addresses to static addresses.
    SETAASA = 0x29
    #: Target reset action, all targets.
    RSTACT_BROADCAST = 0x2A
    #: Enable events, one target.
    ENEC_DIRECT = 0x80
    #: Disable events, one target.
    DISEC_DIRECT = 0x81
    #: Set dynamic address from static address.
    SETDASA = 0x87
    #: Set new dynamic address.
    SETNEWDA = 0x88
    #: Set maximum write length, one target.
    SETMWL_DIRECT = 0x89
    #: Set maximum read length, one target.
    SETMRL_DIRECT = 0x8A
    #: Get maximum write length.
    GETMWL = 0x8B
    #: Get maximum read length.
    GETMRL = 0x8C
    #: Get provisioned identifier.
    GETPID = 0x8D
    #: Get bus characteristics register.
    GETBCR = 0x8E
    #: Get device characteristics register.
    GETDCR = 0x8F
    #: Get device status.
    GETSTATUS = 0x90
    #: Get optional feature capabilities.
    GETCAPS = 0x95
    #: Target reset action, one target.
    RSTACT_DIRECT = 0x9A


class I3cTargetResetDefByte(IntEnum):
    """The defining bytes of RSTACT (MIPI I3C Basic v1.1.1, section 5.1.9.3.26)."""

    #: The target reset pattern resets nothing.
    NO_RESET = 0
    #: The target reset pattern resets the I3C peripheral only.
    RESET_PERIPHERAL = 1
    #: The target reset pattern resets the whole target.
    RESET_WHOLE_TARGET = 2
    #: The target reset pattern resets the debug network adapter.
    RESET_DEBUG_NETWORK_ADAPTER = 3
    #: Prepares the detection of virtual targets.
    VIRTUAL_TARGET_DETECT = 4
    #: Read: the time that resetting the peripheral takes.
    TIME_TO_RESET_PERIPHERAL = 0x81
    #: Read: the time that resetting the whole target takes.
    TIME_TO_RESET_WHOLE_TARGET = 0x82
    #: Read: the time that resetting the debug network adapter takes.
    TIME_TO_RESET_DEBUG_NETWORK_ADAPTER = 0x83
    #: Read: whether the address belongs to a virtual target.
    VIRTUAL_TARGET_INDICATION = 0x84


class NotificationKind(IntEnum):
    """What a notification tells."""

    #: An I3C target joined the bus.
    I3C_HOT_JOIN = 0
    #: An I3C target raised an in-band interrupt.
    I3C_IBI = 1
    #: A GPIO interrupt fired.
    GPIO = 2
    #: The UART received bytes.
    UART_RX = 3
    #: A code that this library does not know.
    UNKNOWN = 4


class ResultCode(IntEnum):
    """The result codes that the library itself produces. Every operation returns one of these
    or, for any other value, the status that the adapter answered with.
    """

    #: The adapter carried the operation out.
    SUCCESS = 0
    #: No response came within the time-out, also when the request could not be written.
    NO_RESPONSE = 0x2000
    #: The link is not connected, or the C handle is null; nothing was sent.
    NOT_CONNECTED = 0x4000
    #: The response answers another request; only reading the adapter's strings tells.
    UNEXPECTED_RESPONSE = 0x6000
    #: An argument was refused; nothing was sent, except where a function says otherwise.
    INVALID_ARGUMENT = 0x8000
    #: The response is shorter than the address list that it announces; only the I2C scan tells.
    SHORT_RESPONSE = 0xA000


class SpiBitOrder(IntEnum):
    """The order in which the bits of a word are shifted."""

    #: Most significant bit first.
    MSB_FIRST = 0
    #: Least significant bit first.
    LSB_FIRST = 1


class SpiMode(IntEnum):
    """The clock polarity (CPOL) and phase (CPHA)."""

    #: CPOL 0, CPHA 0.
    MODE_0 = 0
    #: CPOL 0, CPHA 1.
    MODE_1 = 1
    #: CPOL 1, CPHA 0.
    MODE_2 = 2
    #: CPOL 1, CPHA 1.
    MODE_3 = 3


class SpiDataWidth(IntEnum):
    """The width of a word."""

    #: Words of 8 bits.
    WIDTH_8_BITS = 8
    #: Words of 16 bits.
    WIDTH_16_BITS = 0x10


class SpiChipSelect(IntEnum):
    """The chip-select line that a transfer asserts."""

    #: Chip select 0.
    SELECT_0 = 0
    #: Chip select 1.
    SELECT_1 = 1
    #: Chip select 2.
    SELECT_2 = 2
    #: Chip select 3.
    SELECT_3 = 3


class SpiChipSelectPolarity(IntEnum):
    """The level that a chip-select line is asserted with."""

    #: Asserted low, as most devices expect.
    ACTIVE_LOW = 0
    #: Asserted high.
    ACTIVE_HIGH = 1


class VeltraStatus(IntEnum):
    """The statuses with which the reference firmware answers a request that it does not carry
    out. The library interprets none of them, and another firmware may answer with values
    beside these.
    """

    #: No command has this code.
    UNKNOWN_COMMAND = 1
    #: The request is shorter or longer than its command's layout.
    MALFORMED_REQUEST = 2
    #: A field holds a value that the adapter does not know.
    INVALID_PARAMETER = 3
    #: The bus has no I/O voltage.
    NO_VOLTAGE = 4
    #: The controller, pin or bus has not been initialised.
    NOT_INITIALISED = 5
    #: No target acknowledged the address.
    NOT_ACKNOWLEDGED = 6
    #: A target acknowledged its address and then refused a byte.
    DATA_NOT_ACKNOWLEDGED = 7
    #: The I2C bus has no pull-up resistors: its lines never rise.
    NO_PULL_UP = 8
    #: Something holds a line of the I2C bus low; initialising the controller may free it.
    BUS_STUCK = 9
    #: I3C reserves the address: no device may have it.
    ADDRESS_RESERVED = 0x30
    #: The address belongs to another device of the I3C bus.
    ADDRESS_IN_USE = 0x31
    #: A write is longer than the target's maximum write length.
    LENGTH_ABOVE_LIMIT = 0x32


class UartBaudRate(IntEnum):
    """The line rate in bits per second."""

    #: 1,200 bit/s.
    RATE_1200 = 0
    #: 2,400 bit/s.
    RATE_2400 = 1
    #: 4,800 bit/s.
    RATE_4800 = 2
    #: 9,600 bit/s.
    RATE_9600 = 3
    #: 19,200 bit/s.
    RATE_19200 = 4
    #: 38,400 bit/s.
    RATE_38400 = 5
    #: 57,600 bit/s.
    RATE_57600 = 6
    #: 115,200 bit/s.
    RATE_115200 = 7
    #: 230,400 bit/s.
    RATE_230400 = 8
    #: 460,800 bit/s.
    RATE_460800 = 9
    #: 921,600 bit/s.
    RATE_921600 = 0x0A


class UartHwHandshake(IntEnum):
    """The hardware flow control."""

    #: No flow control.
    NONE = 0
    #: Flow control by RTS and CTS.
    RTS_CTS = 1


class UartParity(IntEnum):
    """The parity bit of a character."""

    #: No parity bit.
    NONE = 0
    #: Odd parity.
    ODD = 1
    #: Even parity.
    EVEN = 2


class UartDataSize(IntEnum):
    """The number of data bits of a character."""

    #: 5 data bits.
    SIZE_5_BITS = 5
    #: 6 data bits.
    SIZE_6_BITS = 6
    #: 7 data bits.
    SIZE_7_BITS = 7
    #: 8 data bits.
    SIZE_8_BITS = 8


class UartStopBit(IntEnum):
    """The number of stop bits of a character."""

    #: One stop bit.
    BIT_1 = 1
    #: Two stop bits.
    BIT_2 = 2


class VeltraSDK_AdapterInfo(Structure):
    """An adapter that is plugged in, as VeltraSDK_Enumerate() finds it."""

    _fields_ = [
        ("path", c_char * 64),
        ("serialNumber", c_char * 512),
        ("reportSize", c_uint16),
        ("accessible", c_bool),
    ]


class I3cTargetInfo(Structure):
    """One target of the I3C bus. The 16 bytes of the record travel exactly as they lie in memory
    on a little-endian host; the library interprets none of them.
    """

    _fields_ = [
        ("staticAddress", c_uint8),
        ("dynamicAddress", c_uint8),
        ("pid", c_uint8 * 6),
        ("bcr", c_uint8),
        ("dcr", c_uint8),
        ("maxWriteLength", c_uint16),
        ("maxReadLength", c_uint16),
        ("maxIbiPayloadSize", c_uint8),
        ("configuration", c_uint8),
    ]


class I3cHotJoinData(Structure):
    """An I3C target that joined the bus."""

    _fields_ = [
        ("pid", c_uint8 * 6),
        ("bcrDcr", c_uint8 * 2),
        ("dynamicAddress", c_uint8),
    ]


class I3cIbiData(Structure):
    """An in-band interrupt."""

    _fields_ = [
        ("address", c_uint8),
        ("payload", c_char_p),
        ("payloadLength", c_size_t),
    ]


class GpioData(Structure):
    """A GPIO interrupt."""

    _fields_ = [
        ("value", c_uint8),
    ]


class UartRxData(Structure):
    """Bytes that the UART received."""

    _fields_ = [
        ("data", c_char_p),
        ("length", c_size_t),
    ]


class Notification(Structure):
    """A notification; valid, with all that it points to, only while the callback runs. A copy of
    the record may be kept: point its `data` at a copy of the frame.
    """

    _fields_ = [
        ("kind", c_uint32),
        ("data", c_char_p),
        ("size", c_size_t),
        ("i3cHotJoinView", I3cHotJoinData),
        ("i3cIbiView", I3cIbiData),
        ("gpioView", GpioData),
        ("uartRxView", UartRxData),
    ]


class VeltraSDK_QueuedNotification(Structure):
    """What a queue tells of an entry beside its frame."""

    _fields_ = [
        ("timeNanoseconds", c_uint64),
        ("lostBefore", c_uint64),
        ("kind", c_uint32),
        ("frameSize", c_uint32),
    ]


class VeltraSDK_DeviceInfo(Structure):
    """The adapter's five identity strings: bytes as it returned them, at most 254 each."""

    _fields_ = [
        ("usbString1", c_char_p),
        ("usbString1Length", c_size_t),
        ("usbString2", c_char_p),
        ("usbString2Length", c_size_t),
        ("usbString3", c_char_p),
        ("usbString3Length", c_size_t),
        ("usbString4", c_char_p),
        ("usbString4Length", c_size_t),
        ("usbString5", c_char_p),
        ("usbString5Length", c_size_t),
    ]


VeltraSDK_NotificationCallback = CFUNCTYPE(None, POINTER(Notification))


#: The names of all known result codes.
STATUS_NAMES: dict[int, str] = {
    0: "Success",
    0x2000: "NoResponse",
    0x4000: "NotConnected",
    0x6000: "UnexpectedResponse",
    0x8000: "InvalidArgument",
    0xA000: "ShortResponse",
    1: "UnknownCommand",
    2: "MalformedRequest",
    3: "InvalidParameter",
    4: "NoVoltage",
    5: "NotInitialised",
    6: "NotAcknowledged",
    7: "DataNotAcknowledged",
    8: "NoPullUp",
    9: "BusStuck",
    0x30: "AddressReserved",
    0x31: "AddressInUse",
    0x32: "LengthAboveLimit",
}

#: Each function's result and arguments.
FUNCTIONS: dict[str, tuple[Any, list[Any]]] = {
    "VeltraSDK_OpenNotificationQueue": (c_int, [c_void_p, c_size_t]),
    "VeltraSDK_TakeNotification": (
        c_bool,
        [
            c_void_p,
            POINTER(VeltraSDK_QueuedNotification),
            POINTER(c_uint8),
            c_size_t,
        ],
    ),
    "VeltraSDK_CloseNotificationQueue": (None, [c_void_p]),
    "VeltraSDK_Create": (c_void_p, [c_int32]),
    "VeltraSDK_Destroy": (None, [c_void_p]),
    "VeltraSDK_ShareHidapi": (c_bool, []),
    "VeltraSDK_Enumerate": (c_size_t, [POINTER(VeltraSDK_AdapterInfo), c_size_t]),
    "VeltraSDK_GetVersion": (c_char_p, []),
    "VeltraSDK_Connect": (c_bool, [c_void_p, c_char_p]),
    "VeltraSDK_ConnectWithSerialNumber": (c_bool, [c_void_p, c_char_p]),
    "VeltraSDK_Disconnect": (None, [c_void_p]),
    "VeltraSDK_IsConnected": (c_bool, [c_void_p]),
    "VeltraSDK_SetStrict": (None, [c_void_p, c_bool]),
    "VeltraSDK_SetOverlap": (c_int16, [c_void_p, c_uint8]),
    "VeltraSDK_GetUnmatchedResponses": (c_uint64, [c_void_p]),
    "VeltraSDK_GetDeviceInfo": (c_int16, [c_void_p, POINTER(VeltraSDK_DeviceInfo)]),
    "VeltraSDK_GetUsbString": (c_int16, [c_void_p, c_uint8, c_char_p, c_size_t]),
    "VeltraSDK_EnterBootMode": (c_int16, [c_void_p]),
    "VeltraSDK_onNotification": (None, [c_void_p, VeltraSDK_NotificationCallback]),
    "VeltraSDK_notificationAsI3cHotJoin": (
        c_bool,
        [
            POINTER(Notification),
            POINTER(I3cHotJoinData),
        ],
    ),
    "VeltraSDK_notificationAsI3cIbi": (c_bool, [POINTER(Notification), POINTER(I3cIbiData)]),
    "VeltraSDK_notificationAsGpio": (c_bool, [POINTER(Notification), POINTER(c_uint8)]),
    "VeltraSDK_notificationAsUartRx": (c_bool, [POINTER(Notification), POINTER(UartRxData)]),
    "VeltraSDK_I2cSetBusVoltage": (c_int16, [c_void_p, c_uint16, c_bool]),
    "VeltraSDK_I2cControllerInit": (c_int16, [c_void_p, c_uint8, c_uint32, c_uint8]),
    "VeltraSDK_I2cSetParameters": (c_int16, [c_void_p, c_uint8, c_uint32, c_uint8]),
    "VeltraSDK_I2cSetPullUpResistors": (c_int16, [c_void_p, c_uint8, c_uint8]),
    "VeltraSDK_I2cScanBus": (
        c_int16,
        [
            c_void_p,
            POINTER(c_uint8),
            c_uint8,
            POINTER(c_uint8),
            POINTER(c_uint8),
            c_uint8,
            c_bool,
        ],
    ),
    "VeltraSDK_I2cWrite": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_uint8,
            c_char_p,
            c_uint8,
            c_char_p,
            c_uint32,
            c_bool,
        ],
    ),
    "VeltraSDK_I2cRead": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_uint8,
            c_char_p,
            c_uint8,
            c_uint16,
            POINTER(c_uint8),
            c_bool,
        ],
    ),
    "VeltraSDK_SpiSetBusVoltage": (c_int16, [c_void_p, c_uint16, c_bool]),
    "VeltraSDK_SpiControllerInit": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_uint8,
            c_uint8,
            c_uint8,
            c_uint8,
            c_uint32,
        ],
    ),
    "VeltraSDK_SpiSetParameters": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_uint8,
            c_uint8,
            c_uint8,
            c_uint8,
            c_uint32,
        ],
    ),
    "VeltraSDK_SpiTransfer": (c_int16, [c_void_p, c_char_p, c_uint16, POINTER(c_uint8), c_uint16]),
    "VeltraSDK_UartSetBusVoltage": (c_int16, [c_void_p, c_uint16, c_bool]),
    "VeltraSDK_UartInit": (c_int16, [c_void_p, c_uint8, c_uint8, c_uint8, c_uint8, c_uint8]),
    "VeltraSDK_UartSetParameters": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_uint8,
            c_uint8,
            c_uint8,
            c_uint8,
        ],
    ),
    "VeltraSDK_UartSendMessage": (c_int16, [c_void_p, c_char_p, c_uint16]),
    "VeltraSDK_GpioSetVoltage": (c_int16, [c_void_p, c_uint16, c_bool]),
    "VeltraSDK_GpioConfigurePin": (c_int16, [c_void_p, c_uint8, c_uint8, c_bool, c_uint8]),
    "VeltraSDK_GpioDigitalWrite": (c_int16, [c_void_p, c_uint8, c_uint8]),
    "VeltraSDK_GpioDigitalRead": (c_int16, [c_void_p, c_uint8, POINTER(c_uint8)]),
    "VeltraSDK_GpioConfigureInterrupt": (c_int16, [c_void_p, c_uint8, c_uint8]),
    "VeltraSDK_GpioDisableInterrupt": (c_int16, [c_void_p, c_uint8]),
    "VeltraSDK_I3cSetBusVoltage": (c_int16, [c_void_p, c_uint16]),
    "VeltraSDK_I3cControllerInit": (c_int16, [c_void_p, c_uint32, c_uint32, c_uint32, c_uint32]),
    "VeltraSDK_I3cSetParameters": (c_int16, [c_void_p, c_uint32, c_uint32, c_uint32, c_uint32]),
    "VeltraSDK_I3cResetBus": (c_int16, [c_void_p]),
    "VeltraSDK_I3cInitBus": (c_int16, [c_void_p, POINTER(I3cTargetInfo), c_uint8]),
    "VeltraSDK_I3cGetDeviceTable": (
        c_int16,
        [
            c_void_p,
            POINTER(I3cTargetInfo),
            c_uint8,
            POINTER(c_uint8),
        ],
    ),
    "VeltraSDK_I3cSetTargetDeviceConfiguration": (c_int16, [c_void_p, c_uint8, c_uint8]),
    "VeltraSDK_I3cSdrWrite": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_char_p,
            c_uint8,
            c_char_p,
            c_uint16,
            c_uint32,
        ],
    ),
    "VeltraSDK_I3cSdrRead": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_char_p,
            c_uint8,
            c_uint16,
            POINTER(c_uint8),
            POINTER(c_uint16),
            c_uint32,
        ],
    ),
    "VeltraSDK_I3cHdrDdrWrite": (c_int16, [c_void_p, c_uint8, c_uint8, c_char_p, c_uint16]),
    "VeltraSDK_I3cHdrDdrRead": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_uint8,
            c_uint16,
            POINTER(c_uint16),
            POINTER(c_uint8),
        ],
    ),
    "VeltraSDK_I3cLegacyI2CWrite": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_char_p,
            c_uint8,
            c_char_p,
            c_uint16,
            c_uint32,
        ],
    ),
    "VeltraSDK_I3cLegacyI2CRead": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_char_p,
            c_uint8,
            c_uint16,
            POINTER(c_uint8),
            POINTER(c_uint16),
            c_uint32,
        ],
    ),
    "VeltraSDK_I3cTargetResetPattern": (c_int16, [c_void_p]),
    "VeltraSDK_I3cHdrExitPattern": (c_int16, [c_void_p]),
    "VeltraSDK_I3cCccGETPID": (c_int16, [c_void_p, c_uint8, POINTER(c_uint8)]),
    "VeltraSDK_I3cCccGETBCR": (c_int16, [c_void_p, c_uint8, POINTER(c_uint8)]),
    "VeltraSDK_I3cCccGETDCR": (c_int16, [c_void_p, c_uint8, POINTER(c_uint8)]),
    "VeltraSDK_I3cCccGETMWL": (c_int16, [c_void_p, c_uint8, POINTER(c_uint16)]),
    "VeltraSDK_I3cCccGETMRL": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            POINTER(c_uint16),
            POINTER(c_uint8),
            POINTER(c_uint8),
        ],
    ),
    "VeltraSDK_I3cCccGETCAPS": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            POINTER(c_uint8),
            POINTER(c_uint8),
            c_bool,
            c_uint8,
        ],
    ),
    "VeltraSDK_I3cCccGETSTATUS": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            POINTER(c_uint8),
            POINTER(c_uint8),
            c_bool,
            c_uint8,
        ],
    ),
    "VeltraSDK_I3cCccSETMWLDirect": (c_int16, [c_void_p, c_uint8, c_uint16]),
    "VeltraSDK_I3cCccSETMWLBroadcast": (c_int16, [c_void_p, c_uint16]),
    "VeltraSDK_I3cCccSETMRLDirect": (c_int16, [c_void_p, c_uint8, c_uint16, c_bool, c_uint8]),
    "VeltraSDK_I3cCccSETMRLBroadcast": (c_int16, [c_void_p, c_uint16, c_bool, c_uint8]),
    "VeltraSDK_I3cCccSETNEWDA": (c_int16, [c_void_p, c_uint8, c_uint8]),
    "VeltraSDK_I3cCccSETDASA": (c_int16, [c_void_p, c_uint8, c_uint8]),
    "VeltraSDK_I3cCccSETAASA": (c_int16, [c_void_p, c_char_p, c_size_t]),
    "VeltraSDK_I3cCccENECDirect": (c_int16, [c_void_p, c_uint8, c_uint8]),
    "VeltraSDK_I3cCccENECBroadcast": (c_int16, [c_void_p, c_uint8]),
    "VeltraSDK_I3cCccDISECDirect": (c_int16, [c_void_p, c_uint8, c_uint8]),
    "VeltraSDK_I3cCccDISECBroadcast": (c_int16, [c_void_p, c_uint8]),
    "VeltraSDK_I3cCccRSTACTDirect": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_uint32,
            c_uint32,
            POINTER(c_uint8),
        ],
    ),
    "VeltraSDK_I3cCccRSTACTBroadcast": (c_int16, [c_void_p, c_uint32]),
    "VeltraSDK_I3cCccRSTDAA": (c_int16, [c_void_p]),
    "VeltraSDK_I3cCccENTDAA": (c_int16, [c_void_p]),
    "VeltraSDK_I3cCccTransfer": (
        c_int16,
        [
            c_void_p,
            c_uint8,
            c_uint32,
            c_uint32,
            c_bool,
            c_uint32,
            c_uint8,
            c_uint32,
            c_uint8,
            c_char_p,
            c_uint32,
            POINTER(c_uint8),
            c_uint8,
            POINTER(c_uint8),
        ],
    ),
}


def declare(library: CDLL) -> None:
    """Gives every function of the library its types; AttributeError when it has not got one."""
    for name, (result, arguments) in FUNCTIONS.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
