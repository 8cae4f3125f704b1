# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""I3C: the controller, private transfers and every Common Command Code."""

from collections.abc import Iterator

import pytest

import veltrasdk
from conftest import SECONDS
from veltrasdk import (
    CCC,
    Adapter,
    I2cTransferRate,
    I3cBus,
    I3cPushPullRate,
    I3cRecord,
    I3cTarget,
    I3cTargetConfiguration,
    I3cTargetResetDefByte,
    I3cTransferFlags,
    MaxReadLength,
)

COMPANION, MEMORY, SENSOR = 0x08, 0x09, 0x0A
LEGACY_EEPROM = 0x50
HOT_JOIN = 0x08


@pytest.fixture
def i3c(adapter: Adapter) -> Iterator[I3cBus]:
    """The bus as it is after switch-on, with every target's address assigned."""
    bus = adapter.i3c(voltage=1.8, push_pull=I3cPushPullRate.RATE_8_MHZ)
    bus.init()
    yield bus
    bus.set_voltage(0)


def target(bus: I3cBus, address: int) -> I3cTarget:
    (found,) = [one for one in bus.targets if one.address == address]
    return found


def test_an_initialised_bus_lists_its_targets(i3c: I3cBus) -> None:
    listed = [
        (t.dynamic_address, t.static_address, t.pid, t.bcr, t.dcr, t.max_write, t.max_read, t.max_ibi_payload)
        for t in i3c.init()
    ]
    assert listed == [
        (COMPANION, 0, 0xFFFE00101000, 0x62, 0xC6, 64, 64, 0),
        (MEMORY, 0x54, 0xFFFE00201000, 0x20, 0x00, 1024, 1024, 0),
        (SENSOR, 0x48, 0xFFFE00301000, 0x26, 0x63, 64, 64, 8),
    ]
    assert repr(i3c.targets[2]) == "<veltrasdk.I3cTarget 0x0a, pid fffe00301000>"


def test_records_say_which_address_a_target_gets(i3c: I3cBus) -> None:
    by_static = I3cRecord(static_address=0x48, dynamic_address=0x30, max_read=32)
    by_pid = I3cRecord(pid=0xFFFE00101000, dynamic_address=0x31)
    targets = i3c.init([by_static, by_pid])
    assert {t.pid: t.dynamic_address for t in targets}[0xFFFE00101000] == 0x31
    assert target(i3c, 0x30).max_read == 32


def test_a_legacy_device_is_reached_by_its_static_address(i3c: I3cBus) -> None:
    legacy = I3cTargetConfiguration.LEGACY_I2C
    i3c.init([I3cRecord(static_address=LEGACY_EEPROM, configuration=legacy)])
    eeprom = target(i3c, LEGACY_EEPROM)
    assert (eeprom.is_legacy, eeprom.configuration) == (True, legacy)
    assert eeprom.read(5, register=0) == b"Hello"
    eeprom.write(b"\x01\x02", register=0x80)
    i3c.i2c_write(0x4F, b"\x00")
    assert i3c.i2c_read(0x4F, 2) == b"\x14\x00"


def test_a_register_is_written_and_read(i3c: I3cBus) -> None:
    sensor = target(i3c, SENSOR)
    assert sensor.read(2, register=0) == b"\x19\x80"
    sensor.write(b"\x5a\xa5", register=4)
    assert sensor.read(2, register=b"\x04") == b"\x5a\xa5"
    i3c.write(MEMORY, b"abc", register=0x0123, register_bytes=2)
    assert i3c.read(MEMORY, 3, register=0x0123, register_bytes=2) == b"abc"


def test_a_read_ends_where_the_target_ends_it(i3c: I3cBus) -> None:
    assert len(target(i3c, SENSOR).read(200, register=0)) == 64


def test_a_transfer_may_leave_the_bus_held(i3c: I3cBus) -> None:
    i3c.write(SENSOR, b"\x04", flags=I3cTransferFlags.NO_STOP)
    assert i3c.read(SENSOR, 1, flags=I3cTransferFlags.SKIP_BROADCAST_ADDRESS) == b"\x00"


def test_a_target_is_written_and_read_in_hdr_ddr(i3c: I3cBus) -> None:
    memory = target(i3c, MEMORY)
    memory.hdr_write(0x10, b"abcdefgh")
    assert memory.hdr_read(code=0x10, count=8) == b"abcdefgh"
    with pytest.raises(veltrasdk.NackError, match="i3c.hdr_read 0x0a: not acknowledged"):
        i3c.hdr_read(SENSOR, 0x10, 2)


def test_an_in_band_interrupt_is_an_event(adapter: Adapter, i3c: I3cBus) -> None:
    sensor = target(i3c, SENSOR)
    sensor.interrupts(True)
    with adapter.events("ibi") as events:
        sensor.write(b"\x42", register=2)
        (event,) = events.wait(SECONDS)
    assert (event.kind, event.address, event.payload) == ("ibi", SENSOR, b"\x42\x19\x80")
    sensor.interrupts(False)
    with adapter.events("ibi") as events:
        sensor.write(b"\x43", register=2)
        i3c.ccc.enec(0x01)
        (event,) = events.wait(SECONDS)
    assert event.payload == b"\x43\x19\x80"


def test_a_target_that_joins_is_an_event(adapter: Adapter, i3c: I3cBus) -> None:
    i3c.ccc.enec(HOT_JOIN)
    with adapter.events("hotjoin") as events:
        target(i3c, COMPANION).write(b"\x01", register=0)
        (event,) = events.wait(SECONDS)
    assert (event.kind, event.address, event.pid, event.bcr, event.dcr) == ("hotjoin", 0x0B, 0xFFFE00401000, 0x01, 0x41)
    assert event.payload == bytes.fromhex("fffe00401000")


def test_a_target_is_configured(i3c: I3cBus) -> None:
    target(i3c, SENSOR).configure(I3cTargetConfiguration.REJECT_IBI)
    assert target(i3c, SENSOR).configuration == I3cTargetConfiguration.REJECT_IBI


def test_the_parameters_of_the_controller_are_changed(i3c: I3cBus) -> None:
    i3c.configure(i2c=I2cTransferRate.RATE_1_MHZ)
    with pytest.raises(veltrasdk.NackError):
        i3c.i2c_read(0x4F, 1)
    i3c.configure()
    assert i3c.i2c_read(0x4F, 2, register=0) == b"\x14\x00"


def test_a_bus_that_was_reset_must_be_initialised_again(i3c: I3cBus) -> None:
    i3c.reset()
    with pytest.raises(veltrasdk.StatusError, match=r"not initialised \(status 0x0005\). Initialise the bus: i3c.init"):
        i3c.read(SENSOR, 1)


def test_without_a_supply_the_error_says_what_to_type(i3c: I3cBus) -> None:
    i3c.set_voltage(0)
    with pytest.raises(veltrasdk.StatusError, match=r"the I/O voltage is off.*adapter.i3c\(voltage=1.8\)"):
        i3c.init()


def test_each_query_tells_what_the_table_has(i3c: I3cBus) -> None:
    sensor = target(i3c, SENSOR)
    ccc = sensor.ccc
    assert (ccc.getpid(), ccc.getbcr(), ccc.getdcr()) == (sensor.pid, sensor.bcr, sensor.dcr)
    assert (ccc.getmwl(), ccc.getmrl()) == (64, MaxReadLength(64, 8))
    assert target(i3c, COMPANION).ccc.getmrl() == MaxReadLength(64, None)
    assert ccc.getstatus() == b"\x00\x00"
    assert target(i3c, COMPANION).ccc.getstatus(0x91) == b"\x00\x00"
    assert ccc.getcaps(0x5A) == b"\xa5\x5a\xa5\x5a"
    assert len(ccc.getcaps()) == 4


def test_limits_are_set_for_one_target_and_for_all(i3c: I3cBus) -> None:
    ccc = target(i3c, SENSOR).ccc
    ccc.setmwl(32)
    ccc.setmrl(33, 4)
    assert (ccc.getmwl(), ccc.getmrl()) == (32, MaxReadLength(33, 4))
    i3c.ccc.setmwl(16)
    i3c.ccc.setmrl(17)
    assert (ccc.getmwl(), ccc.getmrl().length) == (16, 17)
    with pytest.raises(veltrasdk.StatusError) as caught:
        i3c.write(SENSOR, bytes(17))
    assert caught.value.name == "LengthAboveLimit"


def test_addresses_are_taken_away_and_assigned(i3c: I3cBus) -> None:
    i3c.ccc.rstdaa()
    assert not i3c.targets
    i3c.ccc.setdasa(0x48, 0x20)
    assert [t.dynamic_address for t in i3c.targets] == [0x20]
    i3c.ccc.setaasa()
    assert 0x54 in [t.dynamic_address for t in i3c.targets]
    i3c.ccc.entdaa()
    assert len(i3c.targets) == 3
    i3c.ccc.rstdaa()
    i3c.ccc.setaasa([0x54])
    assert [t.dynamic_address for t in i3c.targets] == [0x54]


def test_a_new_address_reaches_the_target_from_then_on(i3c: I3cBus) -> None:
    ccc = target(i3c, SENSOR).ccc
    ccc.setnewda(0x21)
    assert ccc.getdcr() == 0x63
    assert target(i3c, 0x21).read(2, register=0) == b"\x19\x80"


def test_events_are_enabled_and_disabled(i3c: I3cBus) -> None:
    companion = target(i3c, COMPANION)
    companion.ccc.enec(0x01)
    assert companion.read(1, register=2) == b"\x01"
    companion.ccc.disec(0x01)
    assert companion.read(1, register=2) == b"\x00"
    i3c.ccc.enec(0x01)
    i3c.ccc.disec(0x01)
    assert companion.read(1, register=2) == b"\x00"


def test_a_reset_pattern_does_what_was_armed(i3c: I3cBus) -> None:
    sensor = target(i3c, SENSOR)
    sensor.write(b"\x77", register=4)
    i3c.ccc.rstact(I3cTargetResetDefByte.NO_RESET)
    i3c.target_reset_pattern()
    assert sensor.read(1, register=4) == b"\x77"
    sensor.ccc.rstact(I3cTargetResetDefByte.RESET_WHOLE_TARGET)
    i3c.target_reset_pattern()
    i3c.ccc.entdaa()
    assert target(i3c, SENSOR).read(1, register=4) == b"\x00"


def test_a_reset_time_is_read(i3c: I3cBus) -> None:
    assert target(i3c, SENSOR).ccc.rstact_read(I3cTargetResetDefByte.TIME_TO_RESET_PERIPHERAL) == 1


def test_the_hdr_exit_pattern_frees_a_held_bus(i3c: I3cBus) -> None:
    i3c.write(SENSOR, b"\x00", flags=I3cTransferFlags.NO_STOP)
    i3c.hdr_exit_pattern()
    assert i3c.read(SENSOR, 1) == b"\x19"


def test_any_code_is_sent(i3c: I3cBus) -> None:
    sensor = target(i3c, SENSOR)
    assert sensor.ccc.get(CCC.GETPID, 6) == bytes.fromhex("fffe00301000")
    assert sensor.ccc.get(CCC.GETCAPS, 4, defining_byte=0x5A) == b"\xa5\x5a\xa5\x5a"
    sensor.ccc.set(CCC.SETMWL_DIRECT, b"\x00\x20")
    assert sensor.ccc.getmwl() == 32
    sensor.ccc.set(CCC.RSTACT_DIRECT, defining_byte=I3cTargetResetDefByte.NO_RESET)
    i3c.ccc.send(CCC.SETMWL_BROADCAST, b"\x00\x10")
    assert sensor.ccc.getmwl() == 16
    i3c.ccc.send(CCC.RSTACT_BROADCAST, defining_byte=I3cTargetResetDefByte.NO_RESET)
    with pytest.raises(veltrasdk.NackError, match="i3c.ccc.transfer 0x0a: not acknowledged"):
        sensor.ccc.get(0xDF, 1)


@pytest.mark.parametrize(
    ("call", "text"),
    [
        (lambda bus: bus.hdr_read(SENSOR, 0x80, 2), "i3c.hdr_read: the code must be 0 to 127, not 128"),
        (lambda bus: bus.hdr_write(SENSOR, -1, b""), "i3c.hdr_write: the code must be 0 to 127, not -1"),
        (lambda bus: bus.read(SENSOR, 1, flags=32), "i3c.read: the flags must be 0 to 31, not 32"),
        (lambda bus: bus.configure(drive=256), "i3c.configure: drive must be 0 to 255, not 256"),
        (lambda bus: bus.set_voltage(-1), "i3c.voltage: the voltage must be in volts, 0 to 65.535, not -1"),
        (lambda bus: bus.init([I3cRecord(pid=1 << 48)]), "i3c.init: the pid must be 0 to 281,474,976,710,655"),
        (lambda bus: bus.init([I3cRecord()] * 256), "the number of records must be 0 to 255, not 256"),
        (lambda bus: bus.ccc.setmwl(65536), "i3c.ccc.setmwl: the length must be 0 to 65,535, not 65536"),
        (lambda bus: bus.ccc.send(256), "i3c.ccc.transfer: the code must be 0 to 255, not 256"),
        (lambda bus: bus.ccc.send(0, bytes(255), 1), "the number of bytes must be 0 to 255, not 256"),
    ],
)
def test_an_argument_that_does_not_fit_is_refused(i3c: I3cBus, call: object, text: str) -> None:
    with pytest.raises(veltrasdk.ArgumentError) as caught:
        call(i3c)  # type: ignore[operator]
    assert text in str(caught.value)
