# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What the Python examples share: the library loaded with ctypes, and one class over it.

Only the standard library is used. Every function of <veltrasdk/veltrasdk.h> can be called as
`library.VeltraSDK_...`; the ones that the examples need are declared here.
"""

import collections
import ctypes
import queue
import sys
import time

library = ctypes.CDLL("libveltrasdk.so.1")

Handle = ctypes.c_void_p


class DeviceInfoRecord(ctypes.Structure):
    """VeltraSDK_DeviceInfo: five strings, each with its length."""

    _fields_ = [
        field
        for index in range(1, 6)
        for field in (
            (f"usbString{index}", ctypes.c_void_p),
            (f"usbString{index}Length", ctypes.c_size_t),
        )
    ]


class NotificationRecord(ctypes.Structure):
    """The fields of Notification that a callback reads; the library's own follow them."""

    _fields_ = [
        ("kind", ctypes.c_uint32),
        ("data", ctypes.POINTER(ctypes.c_uint8)),
        ("size", ctypes.c_size_t),
    ]


NotificationCallback = ctypes.CFUNCTYPE(None, ctypes.POINTER(NotificationRecord))

# A notification as the examples keep it. The payload of the frame starts at byte 6.
Notification = collections.namedtuple("Notification", "kind frame")

library.VeltraSDK_Create.restype = Handle
library.VeltraSDK_Create.argtypes = [ctypes.c_int32]
library.VeltraSDK_Destroy.restype = None
library.VeltraSDK_Destroy.argtypes = [Handle]
library.VeltraSDK_GetVersion.restype = ctypes.c_char_p
library.VeltraSDK_Connect.restype = ctypes.c_bool
library.VeltraSDK_Connect.argtypes = [Handle, ctypes.c_char_p]
library.VeltraSDK_onNotification.restype = None
library.VeltraSDK_onNotification.argtypes = [Handle, NotificationCallback]


def declare(operation, *argument_types):
    """Declares VeltraSDK_<operation>, which returns a result code, by what follows the handle."""
    function = getattr(library, "VeltraSDK_" + operation)
    function.restype = ctypes.c_int16
    function.argtypes = [Handle, *argument_types]


declare("GetDeviceInfo", ctypes.POINTER(DeviceInfoRecord))
declare("EnterBootMode")

# The array form of operator delete, which releases the strings of a DeviceInfoRecord; it comes from
# the C++ runtime that the library depends on.
library._ZdaPv.restype = None
library._ZdaPv.argtypes = [ctypes.c_void_p]


class AdapterError(Exception):
    """An operation that returned a nonzero result code."""

    def __init__(self, operation, result):
        super().__init__(f"{operation} failed with 0x{result & 0xFFFF:04X}")
        self.result = result & 0xFFFF


class Adapter:
    """A connected handle; use it in a `with` statement."""

    def __init__(self, timeout_ms=1000):
        self.handle = library.VeltraSDK_Create(timeout_ms)
        self.notifications = queue.SimpleQueue()
        # Kept as long as the handle, since the library calls it; installed before connecting.
        self.callback = NotificationCallback(self._keep)
        library.VeltraSDK_onNotification(self.handle, self.callback)
        if not library.VeltraSDK_Connect(self.handle, None):
            self.close()
            sys.exit(
                "No adapter found, or it cannot be opened.\n"
                "  - Is it plugged in? `lsusb` should list it.\n"
                "  - May you open it? Install the udev rule (see the README), then replug.\n"
                "  - No hardware at hand? Run this under `veltra-virtual-adapter run -- ...`."
            )

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        library.VeltraSDK_Destroy(self.handle)
        self.handle = None

    def _keep(self, record):
        """Runs on a thread of the library's own: copies what came, and returns."""
        received = record.contents
        frame = ctypes.string_at(received.data, received.size)
        self.notifications.put(Notification(received.kind, frame))

    def wait_for(self, kind, seconds=30):
        """The next notification of the kind, passing over others; None when none comes."""
        limit = time.monotonic() + seconds
        try:
            while True:
                notification = self.notifications.get(timeout=max(0, limit - time.monotonic()))
                if notification.kind == kind:
                    return notification
        except queue.Empty:
            return None

    def call(self, operation, *arguments):
        """Calls VeltraSDK_<operation> and raises AdapterError on a nonzero result."""
        result = getattr(library, "VeltraSDK_" + operation)(self.handle, *arguments)
        if result != 0:
            raise AdapterError(operation, result)

    def device_info(self):
        """The five identity strings, as bytes."""
        record = DeviceInfoRecord()
        self.call("GetDeviceInfo", ctypes.byref(record))
        strings = []
        for index in range(1, 6):
            pointer = getattr(record, f"usbString{index}")
            length = getattr(record, f"usbString{index}Length")
            strings.append(ctypes.string_at(pointer, length))
            library._ZdaPv(pointer)
        return strings
