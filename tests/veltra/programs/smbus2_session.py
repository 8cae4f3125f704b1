# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What scripts do with smbus2, in its own words."""

import subprocess

import smbus2


def attempt(what, *arguments):
    try:
        return what(*arguments)
    except OSError as error:
        return f"{type(error).__name__} {error.errno} {error.strerror}"


with smbus2.SMBus(0) as bus:
    print(f"functions {bus.funcs:#010x}")
    print("byte", bus.read_byte_data(0x50, 0), bus.read_byte(0x50))
    print("word", hex(bus.read_word_data(0x48, 0)))
    print("block", bytes(bus.read_i2c_block_data(0x50, 6, 25)))
    bus.write_i2c_block_data(0x50, 0x20, list(b"smbus2"))
    for _ in range(3):  # the write cycle
        print("busy", attempt(bus.read_byte, 0x50))
    print("written", bytes(bus.read_i2c_block_data(0x50, 0x20, 8)))
    print("nobody", attempt(bus.read_byte_data, 0x22, 0))
    subprocess.run("veltra-virtual-adapter tell i2c 0 0x48 nack data:2", shell=True, check=True)
    print("refused", attempt(bus.write_byte_data, 0x48, 1, 0))
    print("quick", attempt(bus.write_quick, 0x50), attempt(bus.write_quick, 0x23))
    print("length from the target", attempt(bus.read_block_data, 0x50, 0))
    print("process call", hex(bus.process_call(0x48, 3, 0x0050)))
    try:
        bus.pec = 1
    except OSError as error:
        print("pec", type(error).__name__)
    write = smbus2.i2c_msg.write(0x50, [6])
    read = smbus2.i2c_msg.read(0x50, 4)
    bus.i2c_rdwr(write, read)
    print("messages", bytes(read))

with smbus2.SMBus("/dev/i2c-1") as bus:
    print("bus 1", bytes(bus.read_i2c_block_data(0x50, 0, 17)))
print("bus 7", attempt(smbus2.SMBus, 7))
