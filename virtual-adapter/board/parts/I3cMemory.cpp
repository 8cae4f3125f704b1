// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I3cMemory.hpp"

namespace virtual_adapter {

const I3cCharacteristics I3cMemory::itsKind{0x54,
                                            {0xFF, 0xFE, 0x00, 0x20, 0x10, 0x00},
                                            0x20,
                                            0x00,
                                            1024,
                                            1024,
                                            0,
                                            0x01,
                                            I3cPushPullRate_12_5_MHz};

namespace {

constexpr size_t size = 4096;
constexpr size_t pointerBytes = 2;

} // namespace

I3cMemory::I3cMemory(const I3cCharacteristics& characteristics)
    : I3cTarget(characteristics, Bytes(size), pointerBytes) {}

} // namespace virtual_adapter
