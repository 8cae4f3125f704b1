/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief The enumerations of the GPIO pins; each travels as one byte.
 */
#ifndef VELTRASDK_GPIO_H
#define VELTRASDK_GPIO_H

#include <veltrasdk/declarations.h>

/** A pin of the adapter. */
VELTRASDK_ENUM(GpioPinNumber, uint8_t){
    GpioPinNumber_0 = 0, /**< Pin 0. */
    GpioPinNumber_1 = 1, /**< Pin 1. */
    GpioPinNumber_2 = 2, /**< Pin 2. */
    GpioPinNumber_3 = 3, /**< Pin 3. */
    GpioPinNumber_4 = 4, /**< Pin 4. */
    GpioPinNumber_5 = 5, /**< Pin 5. */
    GpioPinNumber_6 = 6, /**< Pin 6. */
    GpioPinNumber_7 = 7, /**< Pin 7. */
};

/** What a pin is used for. */
VELTRASDK_ENUM(GpioFunctionality, uint8_t){
    GpioFunctionality_Input = 0,           /**< Floating input. */
    GpioFunctionality_Output = 1,          /**< Push-pull output; the one that takes a level. */
    GpioFunctionality_InputPullUp = 2,     /**< Input with pull-up. */
    GpioFunctionality_InputPullDown = 3,   /**< Input with pull-down. */
    GpioFunctionality_OpenDrainOutput = 4, /**< Output that drives low and releases high. */
};

/** The level of a pin. */
VELTRASDK_ENUM(GpioLogicLevel, uint8_t){
    GpioLogicLevel_Low = 0,  /**< Low. */
    GpioLogicLevel_High = 1, /**< High. */
};

/** What makes an armed pin send an interrupt. */
VELTRASDK_ENUM(GpioTriggerType, uint8_t){
    GpioTriggerType_RisingEdge = 0,  /**< A change from low to high. */
    GpioTriggerType_FallingEdge = 1, /**< A change from high to low. */
    GpioTriggerType_BothEdges = 2,   /**< Any change. */
    GpioTriggerType_LowLevel = 3,    /**< The low level. */
    GpioTriggerType_HighLevel = 4,   /**< The high level. */
};

#endif
