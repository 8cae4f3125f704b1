/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief The statuses of the reference firmware, and the names of all result codes.
 */
#ifndef VELTRASDK_STATUS_H
#define VELTRASDK_STATUS_H

#include <stddef.h>

#include <veltrasdk/declarations.h>
#include <veltrasdk/result.h>

/**
 * The statuses with which the reference firmware answers a request that it does not carry out. The
 * library interprets none of them, and another firmware may answer with values beside these.
 */
VELTRASDK_ENUM(VeltraStatus, uint16_t){
    /** No command has this code. */
    VeltraStatus_UnknownCommand = 0x0001,
    /** The request is shorter or longer than its command's layout. */
    VeltraStatus_MalformedRequest = 0x0002,
    /** A field holds a value that the adapter does not know. */
    VeltraStatus_InvalidParameter = 0x0003,
    /** The bus has no I/O voltage. */
    VeltraStatus_NoVoltage = 0x0004,
    /** The controller, pin or bus has not been initialised. */
    VeltraStatus_NotInitialised = 0x0005,
    /** No target acknowledged the address. */
    VeltraStatus_NotAcknowledged = 0x0006,
    /** A target acknowledged its address and then refused a byte. */
    VeltraStatus_DataNotAcknowledged = 0x0007,
    /** The I2C bus has no pull-up resistors: its lines never rise. */
    VeltraStatus_NoPullUp = 0x0008,
    /** Something holds a line of the I2C bus low; initialising the controller may free it. */
    VeltraStatus_BusStuck = 0x0009,
    /** I3C reserves the address: no device may have it. */
    VeltraStatus_AddressReserved = 0x0030,
    /** The address belongs to another device of the I3C bus. */
    VeltraStatus_AddressInUse = 0x0031,
    /** A write is longer than the target's maximum write length. */
    VeltraStatus_LengthAboveLimit = 0x0032,
};

/**
 * @brief Names a result code, one of the library's own or a status of the reference firmware.
 *
 * It is part of the program that calls it, not of the shared library.
 *
 * @param result the result code as a C function returns it.
 * @return the enumerator without its type, such as "NoResponse" or "NotAcknowledged"; null for an
 *         unknown value. A constant that must not be released.
 */
static inline const char* veltraStatusName(int16_t result) {
    switch (result & 0xFFFF) {
    case ResultCode_Success:
        return "Success";
    case ResultCode_NoResponse:
        return "NoResponse";
    case ResultCode_NotConnected:
        return "NotConnected";
    case ResultCode_UnexpectedResponse:
        return "UnexpectedResponse";
    case ResultCode_InvalidArgument:
        return "InvalidArgument";
    case ResultCode_ShortResponse:
        return "ShortResponse";
    case VeltraStatus_UnknownCommand:
        return "UnknownCommand";
    case VeltraStatus_MalformedRequest:
        return "MalformedRequest";
    case VeltraStatus_InvalidParameter:
        return "InvalidParameter";
    case VeltraStatus_NoVoltage:
        return "NoVoltage";
    case VeltraStatus_NotInitialised:
        return "NotInitialised";
    case VeltraStatus_NotAcknowledged:
        return "NotAcknowledged";
    case VeltraStatus_DataNotAcknowledged:
        return "DataNotAcknowledged";
    case VeltraStatus_NoPullUp:
        return "NoPullUp";
    case VeltraStatus_BusStuck:
        return "BusStuck";
    case VeltraStatus_AddressReserved:
        return "AddressReserved";
    case VeltraStatus_AddressInUse:
        return "AddressInUse";
    case VeltraStatus_LengthAboveLimit:
        return "LengthAboveLimit";
    default:
        return NULL; // NOLINT(modernize-use-nullptr): C too
    }
}

#ifdef __cplusplus
/**
 * @brief Names a result code, one of the library's own or a status of the reference firmware.
 * @param result the result code as a class returns it.
 * @return the enumerator without its type; null for an unknown value. A constant.
 */
static inline const char* veltraStatusName(uint16_t result) {
    return veltraStatusName(static_cast<int16_t>(result));
}
#endif

#endif
