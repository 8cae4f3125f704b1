/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief The result codes of the library's own; every other value is the adapter's status.
 */
#ifndef VELTRASDK_RESULT_H
#define VELTRASDK_RESULT_H

#include <veltrasdk/declarations.h>

/**
 * The result codes that the library itself produces. Every operation returns one of these or, for
 * any other value, the status that the adapter answered with.
 *
 * The classes return a result code as an unsigned 16-bit value, the C functions as a signed one:
 * a C caller converts before comparing with a code above 0x7FFF, as in
 * `(uint16_t)result == ResultCode_InvalidArgument`.
 */
VELTRASDK_ENUM(ResultCode, uint16_t){
    /** The adapter carried the operation out. */
    ResultCode_Success = 0x0000,
    /** No response came within the time-out, also when the request could not be written. */
    ResultCode_NoResponse = 0x2000,
    /** The link is not connected, or the C handle is null; nothing was sent. */
    ResultCode_NotConnected = 0x4000,
    /** The response answers another request; only reading the adapter's strings tells. */
    ResultCode_UnexpectedResponse = 0x6000,
    /** An argument was refused; nothing was sent, except where a function says otherwise. */
    ResultCode_InvalidArgument = 0x8000,
    /** The response is shorter than the address list that it announces; only the I2C scan tells. */
    ResultCode_ShortResponse = 0xA000,
};

#endif
