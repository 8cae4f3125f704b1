/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief The enumerations of the UART; each travels as one byte.
 */
#ifndef VELTRASDK_UART_H
#define VELTRASDK_UART_H

#include <veltrasdk/declarations.h>

/** The line rate in bits per second. */
VELTRASDK_ENUM(UartBaudRate, uint8_t){
    UartBaudRate_1200 = 0,    /**< 1,200 bit/s. */
    UartBaudRate_2400 = 1,    /**< 2,400 bit/s. */
    UartBaudRate_4800 = 2,    /**< 4,800 bit/s. */
    UartBaudRate_9600 = 3,    /**< 9,600 bit/s. */
    UartBaudRate_19200 = 4,   /**< 19,200 bit/s. */
    UartBaudRate_38400 = 5,   /**< 38,400 bit/s. */
    UartBaudRate_57600 = 6,   /**< 57,600 bit/s. */
    UartBaudRate_115200 = 7,  /**< 115,200 bit/s. */
    UartBaudRate_230400 = 8,  /**< 230,400 bit/s. */
    UartBaudRate_460800 = 9,  /**< 460,800 bit/s. */
    UartBaudRate_921600 = 10, /**< 921,600 bit/s. */
};

/** The hardware flow control. */
VELTRASDK_ENUM(UartHwHandshake, uint8_t){
    UartHwHandshake_None = 0,   /**< No flow control. */
    UartHwHandshake_RtsCts = 1, /**< Flow control by RTS and CTS. */
};

/** The parity bit of a character. */
VELTRASDK_ENUM(UartParity, uint8_t){
    UartParity_None = 0, /**< No parity bit. */
    UartParity_Odd = 1,  /**< Odd parity. */
    UartParity_Even = 2, /**< Even parity. */
};

/** The number of data bits of a character. */
VELTRASDK_ENUM(UartDataSize, uint8_t){
    UartDataSize_5Bits = 5, /**< 5 data bits. */
    UartDataSize_6Bits = 6, /**< 6 data bits. */
    UartDataSize_7Bits = 7, /**< 7 data bits. */
    UartDataSize_8Bits = 8, /**< 8 data bits. */
};

/** The number of stop bits of a character. */
VELTRASDK_ENUM(UartStopBit, uint8_t){
    UartStopBit_1 = 1, /**< One stop bit. */
    UartStopBit_2 = 2, /**< Two stop bits. */
};

#endif
