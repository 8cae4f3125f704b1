#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that what C, the class and the asynchronous class share is described in the same words:
check_texts.py XML_DIRECTORY

The same operation has the same brief description and the same return value, and the same parameter of it
the same text, except for those below. An exception that is not needed any more fails too.
"""

import collections
import pathlib
import re
import sys
import xml.etree.ElementTree

INTERFACES = {
    "veltrasdk_8h.xml": "C",
    "classVeltraSDK.xml": "class",
    "classVeltraAsyncSDK.xml": "async",
}

# What only a pointer has to say: the rest of its text is compared.
OF_POINTERS = re.compile(r" (Null is refused[^.]*|Must not be null|May be null)\.")

# What differs for a reason: the interface that stands alone, the reason, and where.
EXCEPTIONS = {
    ("C", "takes a pointer and a length, where the classes take a vector"): """
        I2cWrite.registerAddress I2cWrite.data I2cRead.registerAddress SpiTransfer.send
        UartSendMessage.message I3cInitBus.targets I3cSdrWrite.subAddress I3cSdrWrite.data
        I3cSdrRead.subAddress I3cHdrDdrWrite.data I3cLegacyI2cWrite.subAddress
        I3cLegacyI2cWrite.data I3cLegacyI2cRead.subAddress I3cCccSETAASA.staticAddresses""",
    ("C", "fills the caller's buffer on success, where the class replaces what it is given"): """
        GetDeviceInfo.info GetUsbString.text I2cScanBus.addresses I2cRead.data
        I3cGetDeviceTable.table
        I3cSdrRead.data I3cHdrDdrRead.data I3cLegacyI2cRead.data I3cCccGETPID.pid
        I3cCccGETCAPS.capabilities I3cCccGETSTATUS.status I3cCccTransfer.reply""",
    ("C", "has a flag beside the value, where the class has an optional"): """
        I3cCccGETMRL.ibiPayloadSize I3cCccSETMRLDirect.ibiPayloadSize
        I3cCccSETMRLBroadcast.ibiPayloadSize I3cCccGETCAPS.definingByte
        I3cCccGETSTATUS.definingByte""",
    ("C", "can be given no path at all"): "Connect.path",
    ("C", "can be given no handle"): "Connect.return ConnectWithSerialNumber.return EnterBootMode.return",
    ("async", "refuses no bus"): "I2cScanBus.busIndex",
    ("async", "does not look at what the reads say"): "IsConnected.brief IsConnected.return",
}


def text_of(element):
    return " ".join("".join(element.itertext()).split()) if element is not None else ""


def described(function):
    """Yields what is described, and its text."""
    yield "brief", text_of(function.find("briefdescription"))
    yield "return", text_of(function.find(".//simplesect[@kind='return']"))
    for item in function.iterfind(".//parameterlist[@kind='param']/parameteritem"):
        for name in item.iter("parametername"):
            yield name.text, OF_POINTERS.sub("", text_of(item.find("parameterdescription")))


def is_encoders_own(what, text):
    """An encoder says what it sends where an operation says what it is for, and its result is another."""
    return what == "brief" and text.startswith("Sends 0x") or what == "return" and "of the encoder" in text


def texts_of(directory):
    """By operation and what is described: each interface's text. Letter case does not count in names."""
    texts = collections.defaultdict(dict)
    for file, interface in INTERFACES.items():
        for function in xml.etree.ElementTree.parse(directory / file).iter("memberdef"):
            name = function.findtext("name").removeprefix("VeltraSDK_").lower()
            if function.get("kind") == "function" and function.get("prot") == "public":
                for what, text in described(function):
                    if not is_encoders_own(what, text):
                        texts[f"{name}.{what}".lower()][interface] = text
    return texts


def main(directory):
    texts = texts_of(directory)
    complaints = []
    excepted = {}
    for (interface, reason), places in EXCEPTIONS.items():
        for place in places.split():
            shared = texts.get(place.lower(), {})
            if interface not in shared or len(set(shared.values())) < 2:
                complaints.append(f"{place} needs no exception: {interface} {reason}")
            excepted[place.lower()] = interface

    compared = 0
    for place, shared in sorted(texts.items()):
        alike = {interface: text for interface, text in shared.items() if interface != excepted.get(place)}
        compared += len(alike) > 1
        if len(set(alike.values())) > 1:
            complaints.append("\n  ".join([f"{place} is described in other words:", *map(": ".join, alike.items())]))

    print("\n".join(complaints) or f"{compared} texts are shared, {len(excepted)} differ for a reason")
    return bool(complaints) or not compared


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
