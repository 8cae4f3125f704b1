# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""The shape of smbus2, over the adapter."""

import errno
import inspect
from collections.abc import Iterator

import pytest
import smbus2 as original

import veltrasdk
from veltrasdk import Adapter
from veltrasdk.compat import smbus2
from veltrasdk.compat.smbus2 import SMBus, i2c_msg

EEPROM, SENSOR = 0x50, 0x48


@pytest.fixture(autouse=True, scope="module")
def used(adapter: Adapter) -> Iterator[None]:
    smbus2.use(adapter, pull_up="4k7")
    yield
    smbus2.use(None)


@pytest.fixture
def bus(adapter: Adapter) -> Iterator[SMBus]:
    with SMBus(0) as opened:
        # An EEPROM that a test has written to acknowledges again.
        adapter.i2c(0, retry_busy=True).read(EEPROM, 1)
        yield opened


@pytest.mark.parametrize("kind", ["SMBus", "i2c_msg"])
def test_every_method_has_the_parameters_of_the_original(kind: str) -> None:
    theirs, mine = getattr(original, kind), getattr(smbus2, kind)
    public = [name for name in dir(theirs) if not name.startswith("_")]
    assert set(public) <= set(dir(mine))
    for name in [*public, "__init__"]:
        if inspect.isfunction(method := getattr(theirs, name)):
            assert [(p.name, p.kind, p.default) for p in inspect.signature(getattr(mine, name)).parameters.values()] == [
                (p.name, p.kind, p.default) for p in inspect.signature(method).parameters.values()
            ], name


def test_the_module_has_the_names_and_flags_of_the_original() -> None:
    assert set(original.__all__) <= set(smbus2.__all__)
    assert {name: int(flag) for name, flag in smbus2.I2cFunc.__members__.items()} == {
        name: int(flag) for name, flag in original.I2cFunc.__members__.items()
    }


@pytest.mark.parametrize(
    "data",
    [b"text", bytes(range(256)), "gr\xfc\xdfe", [1, 2, 3], []],
    ids=["text", "every byte", "a string", "a list", "nothing"],
)
def test_a_message_is_shown_as_the_original_is(data: bytes | str | list[int]) -> None:
    theirs, mine = original.i2c_msg.write(EEPROM, data), i2c_msg.write(EEPROM, data)
    for shown in (bytes, list, len, str, repr):
        assert shown(mine) == shown(theirs)
    assert [name for name, _ in mine._fields_] == [name for name, _ in theirs._fields_]


def test_bytes_and_words_are_written_and_read(bus: SMBus) -> None:
    assert bus.read_byte_data(EEPROM, 0) == ord("H")
    bus.write_byte(EEPROM, 1)
    assert bus.read_byte(EEPROM) == ord("e")
    bus.write_word_data(SENSOR, 3, 0x0046)
    assert bus.read_word_data(SENSOR, 3) == 0x0046
    bus.write_byte_data(SENSOR, 1, 0x1F)
    assert bus.read_byte_data(SENSOR, 1) == 0x1F
    bus.write_byte_data(SENSOR, 1, 0)
    bus.write_quick(SENSOR)


def test_blocks_are_written_and_read(bus: SMBus) -> None:
    assert bytes(bus.read_i2c_block_data(EEPROM, 0, 5)) == b"Hello"
    bus.write_i2c_block_data(SENSOR, 3, [0x46, 0x00])
    assert bus.read_i2c_block_data(SENSOR, 3, 2) == [0x46, 0x00]


def test_a_block_with_its_length_is_written_and_read(adapter: Adapter, bus: SMBus) -> None:
    bus.write_block_data(EEPROM, 0x40, [10, 20, 30])
    adapter.i2c(0, retry_busy=True).read(EEPROM, 1)
    assert bus.read_i2c_block_data(EEPROM, 0x40, 4) == [3, 10, 20, 30]
    assert bus.read_block_data(EEPROM, 0x40) == [10, 20, 30]
    with pytest.raises(OSError, match="a block of 255 bytes") as caught:
        bus.read_block_data(EEPROM, 0x60)
    assert caught.value.errno == errno.EPROTO


def test_a_process_call_writes_and_reads_without_a_stop(bus: SMBus) -> None:
    # Without a STOP nothing is programmed, and the reads go on where the written bytes end.
    assert bus.process_call(EEPROM, 0x00, 0x1234) == int.from_bytes(b"ll", "little")
    # What is read first is a space, which announces 32 bytes.
    assert bytes(bus.block_process_call(EEPROM, 0x04, [])).startswith(b"from the virtual adapter!")
    assert bus.read_i2c_block_data(EEPROM, 0, 5) == list(b"Hello")


def test_a_transaction_stores_what_it_reads_in_its_messages(bus: SMBus) -> None:
    write, read = i2c_msg.write(EEPROM, [0x06]), i2c_msg.read(EEPROM, 4)
    bus.i2c_rdwr(write, read)
    assert bytes(read) == b"from"
    assert (list(read), len(read), str(read)) == ([102, 114, 111, 109], 4, "from")
    assert repr(write) == "i2c_msg(80,0,b'\\x06')"
    bus.i2c_rdwr(i2c_msg.write(EEPROM, "\x00"), read)
    assert str(read) == "Hell"


def test_messages_of_the_original_are_taken_too(bus: SMBus) -> None:
    read = original.i2c_msg.read(EEPROM, 5)
    bus.i2c_rdwr(original.i2c_msg.write(EEPROM, [0]), read)
    assert bytes(read) == b"Hello"


@pytest.mark.parametrize(
    ("call", "number"),
    [
        (lambda bus: bus.read_byte(0x22), errno.EREMOTEIO),
        (lambda bus: bus.write_quick(0x22), errno.EREMOTEIO),
        (lambda bus: bus.read_byte(0x80), errno.EINVAL),
        (lambda bus: bus.i2c_rdwr(), errno.EINVAL),
        (lambda bus: bus.i2c_rdwr(*[i2c_msg.read(EEPROM, 1)] * 43), errno.EINVAL),
        (lambda bus: bus.i2c_rdwr(i2c_msg.read(EEPROM, 8193)), errno.EINVAL),
        (lambda bus: bus.i2c_rdwr(i2c_msg(EEPROM, 0x10, 0, None)), errno.EOPNOTSUPP),
        (lambda bus: bus.enable_pec(), errno.EOPNOTSUPP),
        (lambda bus: setattr(bus, "pec", 1), errno.EOPNOTSUPP),
        (lambda bus: SMBus().read_byte(EEPROM), errno.EBADF),
        (lambda bus: SMBus(7), errno.ENOENT),
        (lambda bus: SMBus("/dev/i2c-7"), errno.ENOENT),
        (lambda bus: SMBus("/dev/ttyUSB0"), errno.ENOENT),
        (lambda bus: SMBus("bus"), errno.ENOENT),
        (lambda bus: SMBus(-1), errno.ENOENT),
        (lambda bus: bus.read_i2c_block_data(EEPROM, 0, -1), errno.EINVAL),
    ],
)
def test_an_error_has_the_number_that_drivers_expect(bus: SMBus, call: object, number: int) -> None:
    with pytest.raises(OSError) as caught:
        call(bus)  # type: ignore[operator]
    assert caught.value.errno == number


@pytest.mark.parametrize(
    "call",
    [
        lambda bus: bus.write_i2c_block_data(EEPROM, 0, [0] * 33),
        lambda bus: bus.write_block_data(EEPROM, 0, [0] * 33),
        lambda bus: bus.block_process_call(EEPROM, 0, [0] * 33),
        lambda bus: bus.read_i2c_block_data(EEPROM, 0, 33),
    ],
)
def test_a_block_of_more_than_32_bytes_is_refused(bus: SMBus, call: object) -> None:
    with pytest.raises(ValueError, match="32 bytes"):
        call(bus)  # type: ignore[operator]


def test_a_bus_without_voltage_is_an_os_error_that_says_so(adapter: Adapter, bus: SMBus) -> None:
    adapter.voltage_off()
    with pytest.raises(OSError, match="the I/O voltage is off") as caught:
        bus.read_byte(EEPROM)
    adapter.set_voltage(3.3)
    assert caught.value.errno == errno.EIO


def test_what_a_bus_can_do_is_told(bus: SMBus) -> None:
    assert bus.funcs & smbus2.I2cFunc.SMBUS_READ_BLOCK_DATA
    assert not bus.funcs & (smbus2.I2cFunc.SMBUS_PEC | smbus2.I2cFunc.ADDR_10BIT)
    bus.enable_pec(False)
    assert (SMBus().funcs, bus.pec) == (0, 0)


@pytest.mark.parametrize("name", [1, "/dev/i2c-1", "1"])
def test_a_bus_has_a_number_or_a_path(name: int | str) -> None:
    with SMBus(name) as second:
        assert second.read_word_data(SENSOR, 0) == 0x80F5  # -10.5 degrees, high byte first


def test_a_bus_of_another_type_is_refused() -> None:
    with pytest.raises(TypeError):
        SMBus(1.5)  # type: ignore[arg-type]


class TestWithoutAnAdapterOfTheProgram:
    """The first bus opens one, the last closes it."""

    @pytest.fixture(autouse=True)
    def nobody_has_it(self, adapter: Adapter, monkeypatch: pytest.MonkeyPatch) -> None:
        adapter.close()
        smbus2.use(None, pull_up="4k7")
        monkeypatch.setenv("VELTRA_VOLTAGE", "3.3")

    @pytest.mark.parametrize("device", [None, "", "VA-0001", "1-1:1.0"])
    def test_it_is_the_one_that_the_environment_names(
        self, monkeypatch: pytest.MonkeyPatch, device: str | None
    ) -> None:
        if device is not None:
            monkeypatch.setenv("VELTRA_DEVICE", device)
        with SMBus(0) as first, SMBus(1) as second:
            assert first.read_byte_data(EEPROM, 0) == second.read_byte_data(EEPROM, 0) == ord("H")
            with pytest.raises(veltrasdk.NotFoundError):
                veltrasdk.Adapter()
        veltrasdk.Adapter().close()

    def test_one_that_is_not_there_is_an_os_error(self, monkeypatch: pytest.MonkeyPatch) -> None:
        monkeypatch.setenv("VELTRA_DEVICE", "BENCH-7")
        with pytest.raises(OSError) as caught:
            SMBus(0)
        assert caught.value.errno == errno.ENODEV

    def test_a_voltage_that_is_no_number_is_an_os_error_that_names_it(self, monkeypatch: pytest.MonkeyPatch) -> None:
        monkeypatch.setenv("VELTRA_VOLTAGE", "3,3")
        with pytest.raises(OSError, match="VELTRA_VOLTAGE must be in volts, such as 3.3, not '3,3'") as caught:
            SMBus(0)
        assert caught.value.errno == errno.EINVAL

    def test_a_bus_that_cannot_be_initialised_leaves_none_open(self, monkeypatch: pytest.MonkeyPatch) -> None:
        monkeypatch.delenv("VELTRA_VOLTAGE")
        with veltrasdk.Adapter() as opened:
            opened.voltage_off()
        with pytest.raises(OSError, match="the I/O voltage is off"):
            SMBus(0)
        veltrasdk.Adapter().close()
