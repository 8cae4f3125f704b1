#!/usr/bin/env python3
"""Holds three lists of the C functions together: the one below, the header's declarations, and the
functions that the shared library exports. Each declaration carries a documentation comment.

The list is written out so that no function disappears from header and library at once unnoticed.
"""

import pathlib
import re
import sys

from exported_symbols import symbols

FUNCTIONS = """
    Create Destroy GetVersion Connect ConnectWithSerialNumber Disconnect GetDeviceInfo EnterBootMode

    onNotification notificationAsI3cHotJoin notificationAsI3cIbi notificationAsGpio
    notificationAsUartRx

    I2cSetBusVoltage I2cControllerInit I2cSetParameters I2cSetPullUpResistors I2cScanBus I2cWrite
    I2cRead

    SpiSetBusVoltage SpiControllerInit SpiSetParameters SpiTransfer

    UartSetBusVoltage UartInit UartSetParameters UartSendMessage

    GpioSetVoltage GpioConfigurePin GpioDigitalWrite GpioDigitalRead GpioConfigureInterrupt
    GpioDisableInterrupt

    I3cSetBusVoltage I3cControllerInit I3cSetParameters I3cResetBus I3cInitBus I3cGetDeviceTable
    I3cSetTargetDeviceConfiguration

    I3cSdrWrite I3cSdrRead I3cHdrDdrWrite I3cHdrDdrRead I3cLegacyI2CWrite I3cLegacyI2CRead
    I3cTargetResetPattern I3cHdrExitPattern

    I3cCccGETPID I3cCccGETBCR I3cCccGETDCR I3cCccGETMWL I3cCccGETMRL I3cCccGETCAPS I3cCccGETSTATUS

    I3cCccSETMWLDirect I3cCccSETMWLBroadcast I3cCccSETMRLDirect I3cCccSETMRLBroadcast I3cCccSETNEWDA
    I3cCccSETDASA I3cCccSETAASA I3cCccENECDirect I3cCccENECBroadcast I3cCccDISECDirect
    I3cCccDISECBroadcast I3cCccRSTACTDirect I3cCccRSTACTBroadcast I3cCccRSTDAA I3cCccENTDAA
""".split()

DECLARATION = re.compile(r"(\*/\n)?VELTRASDK_API [^;(]*?\b(\w+)\(")


def main(library, header):
    expected = {f"VeltraSDK_{name}" for name in FUNCTIONS}
    declarations = DECLARATION.findall(header.read_text())
    declared = {name for _, name in declarations}
    documented = {name for comment, name in declarations if comment}
    exported = {name for name in symbols(library, "--defined-only") if name.startswith("VeltraSDK_")}

    complaints = {
        "not declared": expected - declared,
        "not documented": expected - documented,
        "not exported": expected - exported,
        "declared or exported, but not listed here": (declared | exported) - expected,
    }
    for what, names in complaints.items():
        for name in sorted(names):
            print(f"{what}: {name}")
    print(f"{len(expected)} C functions")
    return any(complaints.values()) or len(expected) != len(FUNCTIONS)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], pathlib.Path(sys.argv[2])))
