# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What holds for whole processes: exiting, forking, a library that is missing; and the adapter's faults."""

import os
import re
import subprocess
import sys
from collections.abc import Callable

import pytest

Run = Callable[..., "subprocess.CompletedProcess[str]"]

BEGIN = "import veltrasdk, os, sys, threading\nadapter = veltrasdk.Adapter(voltage=3.3)\n"

# What a program may leave open when it ends.
ENDINGS = {
    "an open adapter": "",
    "a consumer": "events = adapter.events()",
    "a function that is called": "adapter.on(print)",
    "a thread that waits for events": "threading.Thread(target=lambda: list(adapter.events()), daemon=True).start()",
    "a thread that uses the adapter": (
        "def use():\n"
        "    while True: adapter.strings()\n"
        "threading.Thread(target=use, daemon=True).start()"
    ),
    "an object in a cycle": "class C: pass\nc = C(); c.c = c; c.a = adapter; c.e = adapter.events(); del adapter",
    "an adapter that a module refers to": "sys.adapter = adapter; sys.bus = adapter.i2c(0)",
}


@pytest.mark.parametrize("ending", ENDINGS)
def test_a_program_ends_with(run_python: Run, ending: str) -> None:
    ended = run_python(BEGIN + ENDINGS[ending] + "\nprint('done')")
    assert (ended.returncode, ended.stdout) == (0, "done\n")
    # The warning that nobody closed it, which -W error makes of it what a finaliser can.
    assert "Fatal" not in ended.stderr and "abort" not in ended.stderr


CHILD_REFUSES = """
import signal, threading
from veltrasdk.compat import smbus2
bus = adapter.i2c(0, pull_up="4k7")
events = adapter.events()
bus.scan()
smbus2.use(adapter)
held, forked = threading.Event(), threading.Event()
def hold():
    with adapter.bus_turns[0].alone(), adapter.i3c_turns.shared(), smbus2._source.lock:
        held.set()
        forked.wait()
holding = threading.Thread(target=hold)
holding.start()
held.wait()
child = os.fork()
if child == 0:
    signal.alarm(30)
    refused = 0
    for call in (bus.scan, adapter.i2c, adapter.i3c, lambda: bus.transfer(veltrasdk.Read(0x50, 1)), adapter.strings,
                 adapter.events, events.wait, events.fileno, veltrasdk.adapters, veltrasdk.Adapter, lambda: next(events)):
        try:
            call()
        except veltrasdk.ForkedError as error:
            refused += 1
            text = str(error)
    try:
        smbus2.SMBus(0)
    except OSError as error:
        refused += 1
    events.close()
    adapter.close()
    smbus2.use(None)
    del bus, adapter, events
    print(refused, text, flush=True)
    sys.exit(0)
forked.set()
holding.join()
print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
print(bus.scan(), adapter.connected)
adapter.close()
"""


def test_a_forked_child_refuses_and_the_parent_goes_on(run_python: Run) -> None:
    ended = run_python(BEGIN + CHILD_REFUSES)
    assert ended.stdout.splitlines() == [
        "12 events: the adapter was opened by the process that this one was forked from",
        "0",
        "[72, 80, 81] True",
    ]
    assert ended.returncode == 0


def test_multiprocessing_says_what_to_do(run_python: Run) -> None:
    ended = run_python(
        BEGIN
        + """
import multiprocessing
def work(results):
    try:
        veltrasdk.Adapter()
    except veltrasdk.ForkedError as error:
        results.put(str(error))
context = multiprocessing.get_context("fork")
results = context.Queue()
process = context.Process(target=work, args=(results,))
process.start()
print(results.get())
process.join()
try:
    context.Queue().put(adapter) or multiprocessing.reduction.ForkingPickler.dumps(adapter)
except TypeError as error:
    print(error)
adapter.close()
sys.stdout.flush()
os._exit(0)
"""
    )
    assert "this process was forked from one that has an adapter open" in ended.stdout
    assert "get_context('spawn')" in ended.stdout


def test_a_child_that_was_forked_before_any_adapter_was_open_may_have_one(run_python: Run) -> None:
    ended = run_python(
        """
import os, veltrasdk
veltrasdk.adapters()
veltrasdk.Adapter().close()
if os.fork() == 0:
    with veltrasdk.Adapter(voltage=3.3) as adapter:
        print(adapter.strings()[0], flush=True)
else:
    print(os.wait()[1])
"""
    )
    assert ended.stdout == "Veltra\n0\n"


def test_an_import_error_names_the_package_when_the_library_is_missing() -> None:
    environment = {name: value for name, value in os.environ.items() if not name.startswith("LD_")}
    program = (
        "import veltrasdk\n"
        "from veltrasdk import _library\n_library.NAME = 'libnosuch.so.1'\nveltrasdk.adapters()"
    )
    ended = subprocess.run([sys.executable, "-c", program], env=environment, capture_output=True, text=True)
    assert ended.stderr.splitlines()[-1].startswith("ImportError: veltrasdk: libnosuch.so.1 cannot be loaded")
    assert "Install the package libveltrasdk1" in ended.stderr


def test_an_older_library_is_told_from_a_missing_one(monkeypatch: pytest.MonkeyPatch) -> None:
    from veltrasdk import _library, _native

    monkeypatch.setitem(_native.FUNCTIONS, "VeltraSDK_OfTheFuture", (None, []))
    with pytest.raises(ImportError, match="older than this package.*VeltraSDK_OfTheFuture.*libveltrasdk1, version"):
        _library.load()


def test_a_process_that_does_not_share_hidapi_is_told_so(run_python: Run) -> None:
    ended = run_python(
        """
import ctypes, veltrasdk
unshared = ctypes.CDLL("libveltrasdk.so.1").VeltraSDK_Create(1000)
try:
    veltrasdk.adapters()
except veltrasdk.VeltraError as error:
    print(error)
"""
    )
    assert ended.stdout == (
        "load: another part of this process already uses libveltrasdk.so.1 without sharing hidapi\n"
    )


# Each fault strikes at the third request.
FAULTS = {
    "lost-response": (
        "adapter = veltrasdk.Adapter(timeout=1)\ntry: adapter.strings()\n"
        "except TimeoutError as error: print(type(error).__name__, error)\nprint(adapter.strings()[2])",
        "NoResponseError strings 3: no response within 1 s\nVA-0001\n",
    ),
    "wrong-identifier": (
        "adapter = veltrasdk.Adapter(timeout=1)\ntry: adapter.strings()\n"
        "except TimeoutError as error: print(type(error).__name__, error)\nprint(adapter.unmatched_responses)",
        "NoResponseError strings 3: no response within 1 s\n1\n",
    ),
    "short-frame": (
        "adapter = veltrasdk.Adapter(timeout=1)\ntry: adapter.strings()\n"
        "except TimeoutError as error: print(type(error).__name__, error)\nprint(adapter.strings()[2])",
        "NoResponseError strings 3: no response within 1 s\nVA-0001\n",
    ),
    "unplug": (
        "adapter = veltrasdk.Adapter(timeout=None)\nevents = adapter.events('gpio')\n"
        "for wait in (adapter.strings, events.wait, lambda: list(events), adapter.events().wait):\n"
        "    try: wait()\n"
        "    except veltrasdk.DisconnectedError as error: print(error)\nprint(adapter.connected)\n"
        "try: veltrasdk.Adapter()\nexcept veltrasdk.NotFoundError as error: print(error.reason)",
        "strings 3: the adapter has gone\nevents: the adapter has gone\nevents: the adapter has gone\n"
        "events: the adapter has gone\nFalse\nabsent\n",
    ),
    "stall": (
        "adapter = veltrasdk.Adapter(timeout=1)\ntry: adapter.strings()\n"
        "except veltrasdk.NoResponseError as error: print(error)\nprint(adapter.connected)",
        "strings 3: no response within 1 s\nTrue\n",
    ),
    "no-permission": (
        "print(veltrasdk.adapters()[0].accessible)\nfor serial in (None, 'VA-0001'):\n"
        "    try: veltrasdk.Adapter(serial)\n"
        "    except veltrasdk.NotFoundError as error: print(error.reason, error.errno)\nadapter = None",
        "False\npermission 13\npermission 13\n",
    ),
    "over-long-count": (
        "adapter = veltrasdk.Adapter(voltage=3.3)\nbus = adapter.i2c(0, pull_up='4k7')\n"
        "try: bus.scan()\nexcept veltrasdk.StatusError as error: print(error.name)\n"
        "print(bus.read(0x50, 5, register=0), adapter.spi(1).transfer(b'abc'))\n"
        "with adapter.uart() as uart: uart.write(b'abc'); print(uart.read(3, 60))\n"
        "i3c = adapter.i3c(1.8); i3c.init(); print(len(i3c.read(10, 2, register=0)) > 2)",
        "ShortResponse\nb'Hello' b'abc'\nb'abc'\nTrue\n",
    ),
    "notification-storm": (
        "adapter = veltrasdk.Adapter()\nevents = adapter.events()\nadapter.strings()\nkinds = {}\n"
        "while sum(kinds.values()) < 2000:\n"
        "    for event in events.wait(60): kinds[event.kind] = kinds.get(event.kind, 0) + 1\n"
        "print(sorted(kinds.items()), events.lost)",
        "[(<EventKind.GPIO: 'gpio'>, 400), (<EventKind.HOTJOIN: 'hotjoin'>, 400), (<EventKind.IBI: 'ibi'>, 400),"
        " (<EventKind.UART: 'uart'>, 400), (<EventKind.UNKNOWN: 'unknown'>, 400)] 0\n",
    ),
    "late-response": (
        "adapter = veltrasdk.Adapter(voltage=3.3, timeout=1)\n"
        "bus = adapter.i2c(0)\n"
        "try: bus.set_pull_up('4k7')\nexcept TimeoutError: pass\n"
        "while True:\n    try: bus.set_pull_up('4k7'); break\n    except TimeoutError: pass\n"
        "print({bus.read(0x50, 5, register=0) for _ in range(100)}, adapter.unmatched_responses >= 1)",
        "{b'Hello'} True\n",
    ),
}


@pytest.mark.parametrize("fault", FAULTS)
def test_a_fault_is_an_exception_that_says_what_happened(run_python: Run, model: str, fault: str) -> None:
    source, expected = FAULTS[fault]
    source = f"import veltrasdk\n{source}\nif adapter: adapter.close()"
    ended = run_python(source, "--model", model, "--fault", fault)
    assert (ended.stdout, ended.stderr, ended.returncode) == (expected, "", 0)


def test_the_boot_mode_closes_the_adapter(run_python: Run) -> None:
    ended = run_python(BEGIN + "adapter.enter_boot_mode()\nprint(adapter, veltrasdk.adapters())")
    assert ended.stdout == "<veltrasdk.Adapter 'VA-0001' at 1-1:1.0, closed> []\n"


CLOSED_MEANWHILE = """
import threading, veltrasdk
adapter = veltrasdk.Adapter(timeout=None)
seen, reached, call = [], threading.Event(), adapter.link.call
def third(operation, function, *arguments, place=""):
    if place == "3":
        reached.set()
    call(operation, function, *arguments, place=place)
adapter.link.call = third
def wait():
    try:
        adapter.strings()
    except veltrasdk.DisconnectedError as error:
        seen.append(str(error))
waiting = threading.Thread(target=wait)
waiting.start()
reached.wait()
adapter.close()
waiting.join()
print(seen)
"""


def test_closing_ends_the_operation_of_another_thread_that_waits_without_limit(run_python: Run) -> None:
    ended = run_python(CLOSED_MEANWHILE, "--fault", "lost-response")
    # It may not have begun to wait when the adapter is closed.
    assert re.fullmatch(r"\['strings 3: the adapter (is closed|has been closed meanwhile)'\]\n", ended.stdout)
