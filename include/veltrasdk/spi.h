/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief The enumerations of the SPI controller; each travels as one byte.
 */
#ifndef VELTRASDK_SPI_H
#define VELTRASDK_SPI_H

#include <veltrasdk/declarations.h>

/** The order in which the bits of a word are shifted. */
VELTRASDK_ENUM(SpiBitOrder, uint8_t){
    SpiBitOrder_MsbFirst = 0, /**< Most significant bit first. */
    SpiBitOrder_LsbFirst = 1, /**< Least significant bit first. */
};

/** The clock polarity (CPOL) and phase (CPHA). */
VELTRASDK_ENUM(SpiMode, uint8_t){
    SpiMode_0 = 0, /**< CPOL 0, CPHA 0. */
    SpiMode_1 = 1, /**< CPOL 0, CPHA 1. */
    SpiMode_2 = 2, /**< CPOL 1, CPHA 0. */
    SpiMode_3 = 3, /**< CPOL 1, CPHA 1. */
};

/** The width of a word. */
VELTRASDK_ENUM(SpiDataWidth, uint8_t){
    SpiDataWidth_8Bits = 8,   /**< Words of 8 bits. */
    SpiDataWidth_16Bits = 16, /**< Words of 16 bits. */
};

/** The chip-select line that a transfer asserts. */
VELTRASDK_ENUM(SpiChipSelect, uint8_t){
    SpiChipSelect_0 = 0, /**< Chip select 0. */
    SpiChipSelect_1 = 1, /**< Chip select 1. */
    SpiChipSelect_2 = 2, /**< Chip select 2. */
    SpiChipSelect_3 = 3, /**< Chip select 3. */
};

/** The level that a chip-select line is asserted with. */
VELTRASDK_ENUM(SpiChipSelectPolarity, uint8_t){
    SpiChipSelectPolarity_ActiveLow = 0,  /**< Asserted low, as most devices expect. */
    SpiChipSelectPolarity_ActiveHigh = 1, /**< Asserted high. */
};

#endif
