/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief The C interface.
 *
 * @par Handle
 * A handle owns one adapter's link. It is created by VeltraSDK_Create() and released by
 * VeltraSDK_Destroy(). Every function that takes a handle accepts null, except
 * VeltraSDK_onNotification().
 *
 * @par Result codes
 * A function that returns `int16_t` sends one request and waits for the response, unless its
 * description says otherwise. It returns the adapter's status, 0 for success, or one of
 * - 0x2000, #ResultCode_NoResponse: no response came within the time-out, also when the request
 *   could not be written;
 * - 0x4000, #ResultCode_NotConnected: the handle is null or not connected; nothing was sent;
 * - -32768 (0x8000), #ResultCode_InvalidArgument: an argument was refused; nothing was sent, except
 *   where a function says otherwise;
 * - those that its description adds.
 *
 * When several reasons apply, the first of these is told: a null handle, an argument that is
 * refused, a link that is not connected. VeltraSDK_UartSendMessage() and VeltraSDK_I3cInitBus() are
 * the exception: they copy their buffer before they look at the handle, so that a missing one is
 * the caller's fault, also with a null handle.
 *
 * @par Arguments
 * "Refused" means #ResultCode_InvalidArgument. Arguments are sent as given, known to the adapter or
 * not, unless their description says that they are refused. Input buffers are copied during the
 * call; nothing of them is kept. A pointer that must not be null is not checked.
 *
 * @par Outputs
 * Output buffers belong to the caller. Bytes that a response announces but does not carry read as
 * 0. A report that comes short is filled up with what earlier reports left, not with 0. A buffer
 * without a capacity argument must hold what the function says; the library does not know its size.
 *
 * @par Time-outs
 * The time-out holds for each request, from the moment at which it was written, and goes on while
 * the process is stopped or gets no processor: a response that came in time may then be reported as
 * #ResultCode_NoResponse, and is a late one. Writing has a limit of its own: hidapi gives each
 * report 1 s at most, whatever the time-out.
 *
 * @par Late responses
 * Without strict mode the next response is taken as the answer of the call that waits, whatever
 * request it answers. A response that arrives after its call has timed out completes the next call
 * at once, whose own response then is the late one: the handle stays one response behind, also
 * after disconnecting. VeltraSDK_GetDeviceInfo() tells: it alone checks that a response is its own,
 * and returns #ResultCode_UnexpectedResponse when it is not. To get back in step, give the adapter
 * the time to answer, destroy the handle, and connect a new one.
 *
 * @par Strict mode
 * VeltraSDK_SetStrict() switches it on; use it wherever two results must not be mixed up. Then
 * - a call's answer is the response with its own transaction identifier and command code. Every
 *   other response is dropped and counted, so that a late one harms nobody;
 * - a read error, as an unplug brings one about, ends every call at once with
 *   #ResultCode_NotConnected, whatever its time-out, and every later one until the link
 *   has been closed and opened. A request that cannot be written is not written any further, and
 *   waits up to 100 ms for a read error: without one the result is #ResultCode_NoResponse, since an
 *   adapter that stalls has not gone;
 * - functions that send may be called from several threads. They take turns in the order of the
 *   calls, and the time-out runs from the writing of the own request. VeltraSDK_Disconnect(),
 *   VeltraSDK_EnterBootMode() and VeltraSDK_Destroy() end the calls of other threads with
 *   #ResultCode_NotConnected, and wait until those have left.
 *
 * @par Threads
 * Without strict mode calls on one handle must not overlap, except that
 * VeltraSDK_TakeNotification() and VeltraSDK_CloseNotificationQueue() may overlap others, as they
 * say. Notification callbacks run on the handle's polling thread, one at a time, while a call may
 * be waiting in another thread; a callback must not call any function of the same handle except the
 * notification accessors. VeltraSDK_Create(), VeltraSDK_Connect(),
 * VeltraSDK_ConnectWithSerialNumber(), VeltraSDK_Disconnect(), VeltraSDK_EnterBootMode(),
 * VeltraSDK_Destroy() and VeltraSDK_Enumerate() must not overlap between any two handles of the
 * process, since hidapi's own calls are not safe against each other; they may with
 * VeltraSDK_ShareHidapi(). After fork() with a connected handle the child may only call exec() or
 * _exit().
 *
 * @par Exceptions
 * The functions catch nothing: what is thrown beneath them (std::bad_alloc, say) reaches the
 * caller, and ends a C program. A C++ program can use or destroy the handle afterwards. What leaves
 * a notification callback ends the process.
 */
#ifndef VELTRASDK_VELTRASDK_H
#define VELTRASDK_VELTRASDK_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include <veltrasdk/adapters.h>
#include <veltrasdk/declarations.h>
#include <veltrasdk/gpio.h>
#include <veltrasdk/i3c.h>
#include <veltrasdk/notification.h>
#include <veltrasdk/notification_queue.h>
#include <veltrasdk/result.h>
#include <veltrasdk/spi.h>
#include <veltrasdk/status.h>
#include <veltrasdk/uart.h>

#ifdef __cplusplus
#include <veltrasdk/Notification.hpp>

extern "C" {
#endif

/**
 * The adapter's five identity strings: bytes as it returned them, at most 254 each.
 *
 * Each string is a copy with a terminating NUL behind its bytes, allocated by the library with
 * `new char[]`. All five belong to the caller after each successful VeltraSDK_GetDeviceInfo(); the
 * library exports no function that releases them.
 * - C++: `delete[] info.usbString1;`
 * - C: use VeltraSDK_GetUsbString() instead, which hands out nothing that must be released.
 * - Python: `library._ZdaPv(pointer)`, the array form of operator delete in the C++ runtime, where
 *   `library` is the ctypes.CDLL of this library, whose dependencies are searched too, and
 *   `library._ZdaPv.argtypes` is `[ctypes.c_void_p]`.
 *
 * Do not release them with free().
 */
typedef struct VeltraSDK_DeviceInfo {
    char* usbString1;        /**< String index 1. */
    size_t usbString1Length; /**< Bytes of it, without the NUL. */
    char* usbString2;        /**< String index 2. */
    size_t usbString2Length; /**< Bytes of it, without the NUL. */
    char* usbString3;        /**< String index 3. */
    size_t usbString3Length; /**< Bytes of it, without the NUL. */
    char* usbString4;        /**< String index 4. */
    size_t usbString4Length; /**< Bytes of it, without the NUL. */
    char* usbString5;        /**< String index 5. */
    size_t usbString5Length; /**< Bytes of it, without the NUL. */
} VeltraSDK_DeviceInfo;

/**
 * Receives a notification on the handle's polling thread. The record and its data are valid only
 * during the call. A copy of the record may be kept: point its `data` at a copy of the frame.
 */
typedef void (*VeltraSDK_NotificationCallback)(const Notification* notification);

/** @name Lifecycle and system */
/** @{ */

/**
 * @brief Creates a handle that is not connected, and initialises hidapi.
 * @param timeoutMs how long a call waits for its response, in ms. -1 waits without limit, also when
 *                  the request could not be written; 0 and every other negative value do not wait.
 * @return the handle, never null; the caller releases it with VeltraSDK_Destroy().
 *
 * @warning Without VeltraSDK_ShareHidapi() connect one handle at a time: destroying any handle
 * shuts hidapi down for the whole process, which hidapi's libusb back end does not survive while
 * another handle is connected.
 */
VELTRASDK_API VeltraSDK_Handle* VeltraSDK_Create(int32_t timeoutMs);

/**
 * @brief Closes the link, releases the handle and shuts hidapi down, whatever other handles exist;
 * where it is shared, with the last one only.
 *
 * Sends nothing. A running callback is waited for, so it must not destroy the handle; none runs
 * after the return.
 *
 * @param handle the handle; null does nothing.
 *
 * @warning Without VeltraSDK_ShareHidapi() hidapi is shut down for the whole process. Destroying
 * one handle while another one is connected makes hidapi's libusb back end abort the process:
 * connect one handle at a time.
 */
VELTRASDK_API void VeltraSDK_Destroy(VeltraSDK_Handle* handle);

/**
 * @brief Shares hidapi between the objects of this process, so that several may be connected.
 *
 * hidapi is then initialised by the first handle and shut down with the last one, and one lock
 * covers enumerating, opening, closing and shutting down, never reading or writing: handles may be
 * created, connected, disconnected and destroyed from several threads. Calls on one handle still
 * must not overlap. Sharing holds until the process ends.
 *
 * @return whether hidapi is shared; false when an object exists that was created without.
 */
VELTRASDK_API bool VeltraSDK_ShareHidapi(void);

/**
 * @brief Lists every adapter that is plugged in, connected ones included; sends nothing.
 *
 * hidapi opens every HID device of the machine to read its strings. Unless hidapi is shared, it is
 * not shut down afterwards, and the call must not overlap with those that must not overlap with
 * each other: see Threads above.
 *
 * @param[out] adapters receives the adapters in hidapi's order; must not be null unless
 *                      @p capacity is 0.
 * @param capacity the adapters that @p adapters holds; further ones are not stored.
 * @return how many adapters there are, which may be more than were stored.
 */
VELTRASDK_API size_t VeltraSDK_Enumerate(VeltraSDK_AdapterInfo* adapters, size_t capacity);

/**
 * @brief Tells the library's version.
 * @return the version, such as "1.2.3"; a constant that must not be released.
 */
VELTRASDK_API const char* VeltraSDK_GetVersion(void);

/**
 * @brief Opens the link to the adapter with a HID device path.
 *
 * On an open link nothing is searched and it stays as it is. An adapter that was unplugged leaves
 * its link open, and calls return #ResultCode_NoResponse, in strict mode #ResultCode_NotConnected:
 * call VeltraSDK_Disconnect() before connecting again.
 *
 * @param handle the handle.
 * @param path the HID device path, matched exactly; null or empty selects the first known adapter.
 * @return whether the link is open; false for a null handle, and when no such adapter is there or
 *         it cannot be opened.
 * @throws std::system_error when the polling thread cannot be started; nothing is left open.
 */
VELTRASDK_API bool VeltraSDK_Connect(VeltraSDK_Handle* handle, const char* path);

/**
 * @brief Opens the link to the adapter with a serial number.
 *
 * On an open link nothing is searched and it stays as it is. An adapter that was unplugged leaves
 * its link open, and calls return #ResultCode_NoResponse, in strict mode #ResultCode_NotConnected:
 * call VeltraSDK_Disconnect() before connecting again. Without write permission on the adapter's
 * device node its serial number cannot be read, and the adapter is not found.
 *
 * @param handle the handle.
 * @param serialNumber the USB serial number in UTF-8, matched exactly; empty selects the first
 *                     known adapter.
 * @return whether the link is open; false for a null handle, and when no such adapter is there or
 *         it cannot be opened.
 * @throws std::system_error when the polling thread cannot be started; nothing is left open.
 * @throws std::range_error when a serial number met in the search, of any HID device, has a code
 *         point above 0x10FFFF, which a C program cannot catch.
 * @throws std::logic_error when @p serialNumber is null and @p handle is not, which a C program
 *         cannot catch.
 */
VELTRASDK_API bool VeltraSDK_ConnectWithSerialNumber(VeltraSDK_Handle* handle,
                                                     const char* serialNumber);

/**
 * @brief Closes the link; sends nothing.
 *
 * It takes about 100 ms at most, plus a running callback's time. No callback runs after the return.
 * The callback stays installed and serves the next connection, which may be to another adapter. On
 * a closed link nothing happens.
 *
 * @param handle the handle; null does nothing.
 */
VELTRASDK_API void VeltraSDK_Disconnect(VeltraSDK_Handle* handle);

/**
 * @brief Tells whether the link is connected and no read has failed since, in both modes.
 *
 * After an unplug it becomes false within about 100 ms. It may be called from any thread, a
 * notification callback included.
 *
 * @param handle the handle; null is not connected.
 * @return whether the adapter can be reached, as far as the link knows.
 */
VELTRASDK_API bool VeltraSDK_IsConnected(VeltraSDK_Handle* handle);

/**
 * @brief Switches strict mode on or off; off at first.
 *
 * Strict mode is described above. Switch while no call runs, best before connecting. Each call sets
 * the overlap back to 1.
 *
 * @param handle the handle; null does nothing.
 * @param strict whether strict mode is to be on.
 */
VELTRASDK_API void VeltraSDK_SetStrict(VeltraSDK_Handle* handle, bool strict);

/**
 * @brief Sets how many requests may be outstanding at once in strict mode; 1 at first.
 *
 * They are those of several threads. Only calls whose request has at most 512 bytes and whose
 * response fits one report overlap; every other one has the adapter to itself. What is in flight
 * behind a request that fails is carried out. How many requests an adapter queues is its maker's
 * word.
 *
 * @param handle the handle.
 * @param requests how many, 1 to 4.
 * @return 0, or #ResultCode_InvalidArgument for another number or when strict mode is off.
 */
VELTRASDK_API int16_t VeltraSDK_SetOverlap(VeltraSDK_Handle* handle, uint8_t requests);

/**
 * @brief Counts the responses that strict mode has dropped, since nobody waited for them.
 * @param handle the handle; null has dropped none.
 * @return how many there were so far.
 */
VELTRASDK_API uint64_t VeltraSDK_GetUnmatchedResponses(VeltraSDK_Handle* handle);

/**
 * @brief Reads the adapter's five identity strings, one request each; sends 0x0407 five times.
 *
 * It ends with the first string that cannot be read. Each of the five requests has the whole
 * time-out.
 *
 * @param handle the handle.
 * @param[out] info receives the strings, which then belong to the caller: see VeltraSDK_DeviceInfo
 *                  for how to release them. Written only when the result is 0. Must not be null.
 * @return the result code, 0 for responses of any status. Also #ResultCode_UnexpectedResponse when
 *         a response answers another request.
 */
VELTRASDK_API int16_t VeltraSDK_GetDeviceInfo(VeltraSDK_Handle* handle, VeltraSDK_DeviceInfo* info);

/**
 * @brief Reads one of the adapter's strings; sends 0x0407.
 * @param handle the handle.
 * @param index the string's index, 1 to 5, passed on unchanged.
 * @param[out] text receives the string's bytes, at most 254, and a NUL behind them, when the result
 *                  is 0; left as it was on any other result. Null is refused.
 * @param capacity the bytes that @p text holds; 255 are always enough. A string that does not fit
 *                 with its NUL is refused when it has been read: the request was sent.
 * @return the result code, 0 for a response of any status. Also #ResultCode_UnexpectedResponse when
 *         the response answers another request.
 */
VELTRASDK_API int16_t VeltraSDK_GetUsbString(VeltraSDK_Handle* handle, uint8_t index, char* text,
                                             size_t capacity);

/**
 * @brief Sends the adapter into its boot mode and closes the link; sends 0x0402.
 *
 * No response is awaited. The link is closed as by VeltraSDK_Disconnect(), and the handle can
 * connect again. In strict mode a command that cannot be written leaves it open: the result then is
 * #ResultCode_NoResponse, or #ResultCode_NotConnected when the adapter has gone.
 *
 * @param handle the handle.
 * @return 0 when the command was handed to the link, whether or not it could be written;
 *         #ResultCode_NotConnected when the handle is null or not connected.
 */
VELTRASDK_API int16_t VeltraSDK_EnterBootMode(VeltraSDK_Handle* handle);

/** @} */

/** @name Notifications */
/** @{ */

/**
 * @brief Installs the receiver of notifications, which replaces the one before.
 *
 * VeltraSDK_OpenNotificationQueue() is the other way: it keeps them until they are waited for.
 *
 * Install it before connecting, or while no notification can arrive: it is replaced without a lock.
 * The callback sees the first 256 bytes of a frame. The frame's size is kept in 8 bits: a frame of
 * 256 bytes or more arrives with size 0, and every accessor refuses it.
 *
 * Every call must return in less than 1 ms at full speed, 0.1 ms at high speed: one report time
 * with about 20 us to spare. One stall may last about 30 report times: 30 ms at full speed, 4 ms at
 * high speed. hidapi keeps 32 unread reports beside the one at hand, and then silently drops the
 * oldest, which may be a response.
 *
 * @param handle the handle; must not be null.
 * @param callback receives each notification on the polling thread, those of kind
 *                 #NotificationKind_Unknown included; null silences notifications.
 */
VELTRASDK_API void VeltraSDK_onNotification(VeltraSDK_Handle* handle,
                                            VeltraSDK_NotificationCallback callback);

/**
 * @brief Decodes a notification of kind #NotificationKind_I3cHotJoin.
 * @param notification the notification; not changed.
 * @param[out] out receives the joined target.
 * @return whether it was decoded; false, with nothing written, for a null pointer, another kind or
 *         a frame below 15 bytes.
 */
VELTRASDK_API bool VeltraSDK_notificationAsI3cHotJoin(const Notification* notification,
                                                      I3cHotJoinData* out);

/**
 * @brief Decodes a notification of kind #NotificationKind_I3cIbi.
 * @param notification the notification; not changed.
 * @param[out] out receives the in-band interrupt. Its payload points into the notification's data,
 *                 and its length is the adapter's word: read at most `notification->size - 8`
 *                 bytes.
 * @return whether it was decoded; false, with nothing written, for a null pointer, another kind or
 *         a frame below 8 bytes.
 */
VELTRASDK_API bool VeltraSDK_notificationAsI3cIbi(const Notification* notification,
                                                  I3cIbiData* out);

/**
 * @brief Decodes a notification of kind #NotificationKind_Gpio.
 * @param notification the notification; not changed.
 * @param[out] out receives the adapter's event byte.
 * @return whether it was decoded; false, with nothing written, for a null pointer, another kind or
 *         a frame below 7 bytes.
 */
VELTRASDK_API bool VeltraSDK_notificationAsGpio(const Notification* notification,
                                                unsigned char* out);

/**
 * @brief Decodes a notification of kind #NotificationKind_UartRx.
 * @param notification the notification; not changed.
 * @param[out] out receives the bytes. They lie in the notification's data, and their number is the
 *                 adapter's word: read at most `notification->size - 8` bytes.
 * @return whether it was decoded; false, with nothing written, for a null pointer, another kind or
 *         a frame below 8 bytes.
 */
VELTRASDK_API bool VeltraSDK_notificationAsUartRx(const Notification* notification,
                                                  UartRxData* out);

/** @} */

/** @name I2C */
/** @{ */

/**
 * @brief Sets the I/O voltage of I2C, SPI, UART and GPIO; sends 0x0405.
 *
 * The voltage is one setting, and each of the four functions that set it sends this request.
 *
 * @param handle the handle.
 * @param millivolts the voltage in mV.
 * @param flag passed on unchanged; its meaning is the adapter's.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I2cSetBusVoltage(VeltraSDK_Handle* handle, uint16_t millivolts,
                                                 bool flag);

/**
 * @brief Initialises a controller; sends 0x0901.
 * @param handle the handle.
 * @param busIndex the I2C controller, 0 or 1.
 * @param clockHz the clock rate in Hz.
 * @param option passed on unchanged; its meaning is the adapter's.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I2cControllerInit(VeltraSDK_Handle* handle, uint8_t busIndex,
                                                  uint32_t clockHz, uint8_t option);

/**
 * @brief Changes the parameters of an initialised controller; sends 0x0902.
 * @param handle the handle.
 * @param busIndex the I2C controller, 0 or 1.
 * @param clockHz the clock rate in Hz.
 * @param option passed on unchanged; its meaning is the adapter's.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I2cSetParameters(VeltraSDK_Handle* handle, uint8_t busIndex,
                                                 uint32_t clockHz, uint8_t option);

/**
 * @brief Sets the pull-up resistors of a bus; sends 0x0802.
 * @param handle the handle.
 * @param busIndex the I2C controller, 0 or 1.
 * @param setting passed on unchanged; its meaning is the adapter's.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I2cSetPullUpResistors(VeltraSDK_Handle* handle, uint8_t busIndex,
                                                      uint8_t setting);

/**
 * @brief Finds the targets of a bus; sends 0x0906.
 *
 * The two counts may go to one variable, which then holds the number of 10-bit addresses.
 *
 * @param handle the handle.
 * @param[out] addresses receives the list: the 7-bit addresses of one byte each, unshifted, then
 *                       the 10-bit ones of two bytes each, as the adapter sent them; written only
 *                       when the result is 0. Null is refused.
 * @param size the bytes that @p addresses holds; a longer list is refused after the scan, with
 *             nothing copied.
 * @param[out] sevenBitCount receives the number of 7-bit addresses; written whenever a response
 *                           arrived. Null is refused.
 * @param[out] tenBitCount receives the number of 10-bit addresses; written whenever a response
 *                         arrived. Null is refused.
 * @param busIndex the I2C controller, 0 or 1; another is refused.
 * @param flag passed on unchanged; its meaning is the adapter's.
 * @return the result code. Also #ResultCode_ShortResponse, whatever the status, when the response
 *         does not carry the list that its counts announce.
 */
VELTRASDK_API int16_t VeltraSDK_I2cScanBus(VeltraSDK_Handle* handle, uint8_t* addresses,
                                           uint8_t size, uint8_t* sevenBitCount,
                                           uint8_t* tenBitCount, uint8_t busIndex, bool flag);

/**
 * @brief Writes to a target; sends 0x0904.
 * @param handle the handle.
 * @param busIndex the I2C controller, 0 or 1.
 * @param targetAddress the target's address, 7 bits, unshifted.
 * @param registerAddress the register address, most significant byte first; null with a nonzero
 *                        length is refused.
 * @param registerAddressLength the bytes of it, 0 to 4; more are refused.
 * @param data the bytes to write; null with a nonzero length is refused.
 * @param dataLength the bytes of it, at most 65535, since the length field holds their number
 *                   modulo 65536.
 * @param flag passed on unchanged; its meaning is the adapter's.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I2cWrite(VeltraSDK_Handle* handle, uint8_t busIndex,
                                         uint8_t targetAddress, const uint8_t* registerAddress,
                                         uint8_t registerAddressLength, const uint8_t* data,
                                         uint32_t dataLength, bool flag);

/**
 * @brief Reads from a target; sends 0x0905.
 * @param handle the handle.
 * @param busIndex the I2C controller, 0 or 1.
 * @param targetAddress the target's address, 7 bits, unshifted.
 * @param registerAddress the register address, most significant byte first; null with a nonzero
 *                        length is refused.
 * @param registerAddressLength the bytes of it, 0 to 4; more are refused.
 * @param length the number of bytes to read.
 * @param[out] data receives exactly @p length bytes, those that the response does not carry as
 *                  zero; written only when the result is 0. Null is refused, also for length 0.
 * @param flag passed on unchanged; its meaning is the adapter's.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I2cRead(VeltraSDK_Handle* handle, uint8_t busIndex,
                                        uint8_t targetAddress, const uint8_t* registerAddress,
                                        uint8_t registerAddressLength, uint16_t length,
                                        uint8_t* data, bool flag);

/** @} */

/** @name SPI */
/** @{ */

/**
 * @brief Sets the I/O voltage of I2C, SPI, UART and GPIO; sends 0x0405.
 *
 * The voltage is one setting, and each of the four functions that set it sends this request.
 *
 * @param handle the handle.
 * @param millivolts the voltage in mV.
 * @param flag passed on unchanged; its meaning is the adapter's.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_SpiSetBusVoltage(VeltraSDK_Handle* handle, uint16_t millivolts,
                                                 bool flag);

/**
 * @brief Initialises the controller; sends 0x0D01.
 * @param handle the handle.
 * @param bitOrder the bit order, passed on unchanged.
 * @param mode the clock polarity and phase, passed on unchanged.
 * @param dataWidth the word width, passed on unchanged.
 * @param chipSelect the chip-select line that transfers assert, passed on unchanged.
 * @param polarity the level that it is asserted with, passed on unchanged.
 * @param clockHz the clock rate in Hz.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_SpiControllerInit(VeltraSDK_Handle* handle, SpiBitOrder bitOrder,
                                                  SpiMode mode, SpiDataWidth dataWidth,
                                                  SpiChipSelect chipSelect,
                                                  SpiChipSelectPolarity polarity, uint32_t clockHz);

/**
 * @brief Changes the parameters of the initialised controller; sends 0x0D02.
 * @param handle the handle.
 * @param bitOrder the bit order, passed on unchanged.
 * @param mode the clock polarity and phase, passed on unchanged.
 * @param dataWidth the word width, passed on unchanged.
 * @param chipSelect the chip-select line that transfers assert, passed on unchanged.
 * @param polarity the level that it is asserted with, passed on unchanged.
 * @param clockHz the clock rate in Hz.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_SpiSetParameters(VeltraSDK_Handle* handle, SpiBitOrder bitOrder,
                                                 SpiMode mode, SpiDataWidth dataWidth,
                                                 SpiChipSelect chipSelect,
                                                 SpiChipSelectPolarity polarity, uint32_t clockHz);

/**
 * @brief Runs a full-duplex transfer; sends 0x0D04.
 * @param handle the handle.
 * @param send the bytes to send; null sends none.
 * @param sendLength the bytes of it, 0 to 65535; not used when @p send is null.
 * @param[out] receive receives as many bytes as the response counts, at most 65535: give it that
 *                     room unless the adapter is trusted to return no more than was asked for;
 *                     written only when the result is 0. Null discards them.
 * @param length the requested length in bytes.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_SpiTransfer(VeltraSDK_Handle* handle, const uint8_t* send,
                                            uint16_t sendLength, uint8_t* receive, uint16_t length);

/** @} */

/** @name UART */
/** @{ */

/**
 * @brief Sets the I/O voltage of I2C, SPI, UART and GPIO; sends 0x0405.
 *
 * The voltage is one setting, and each of the four functions that set it sends this request.
 *
 * @param handle the handle.
 * @param millivolts the voltage in mV.
 * @param flag passed on unchanged; its meaning is the adapter's.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_UartSetBusVoltage(VeltraSDK_Handle* handle, uint16_t millivolts,
                                                  bool flag);

/**
 * @brief Initialises the UART; sends 0x1002.
 *
 * Received bytes arrive as notifications of kind #NotificationKind_UartRx.
 *
 * @param handle the handle.
 * @param baudRate the line rate, passed on unchanged.
 * @param handshake the hardware flow control, passed on unchanged.
 * @param parity the parity bit, passed on unchanged.
 * @param dataSize the number of data bits, passed on unchanged.
 * @param stopBit the number of stop bits, passed on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_UartInit(VeltraSDK_Handle* handle, UartBaudRate baudRate,
                                         UartHwHandshake handshake, UartParity parity,
                                         UartDataSize dataSize, UartStopBit stopBit);

/**
 * @brief Changes the parameters of the initialised UART; sends 0x1003.
 *
 * Received bytes arrive as notifications of kind #NotificationKind_UartRx.
 *
 * @param handle the handle.
 * @param baudRate the line rate, passed on unchanged.
 * @param handshake the hardware flow control, passed on unchanged.
 * @param parity the parity bit, passed on unchanged.
 * @param dataSize the number of data bits, passed on unchanged.
 * @param stopBit the number of stop bits, passed on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_UartSetParameters(VeltraSDK_Handle* handle, UartBaudRate baudRate,
                                                  UartHwHandshake handshake, UartParity parity,
                                                  UartDataSize dataSize, UartStopBit stopBit);

/**
 * @brief Sends bytes over the UART; sends 0x1005.
 * @param handle the handle.
 * @param message the bytes to send; must not be null unless @p length is 0, whatever the handle.
 * @param length the bytes of it, 0 to 65535.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_UartSendMessage(VeltraSDK_Handle* handle, const uint8_t* message,
                                                uint16_t length);

/** @} */

/** @name GPIO */
/** @{ */

/**
 * @brief Sets the I/O voltage of I2C, SPI, UART and GPIO; sends 0x0405.
 *
 * The voltage is one setting, and each of the four functions that set it sends this request.
 *
 * @param handle the handle.
 * @param millivolts the voltage in mV.
 * @param flag passed on unchanged; its meaning is the adapter's.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_GpioSetVoltage(VeltraSDK_Handle* handle, uint16_t millivolts,
                                               bool flag);

/**
 * @brief Configures a pin; sends 0x1401.
 * @param handle the handle.
 * @param pin the pin, passed on unchanged.
 * @param functionality what the pin is used for, passed on unchanged.
 * @param hasLevel whether @p level is used; an output starts low without it.
 * @param level the initial level of an output, passed on unchanged; not sent for another
 *              functionality than #GpioFunctionality_Output.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_GpioConfigurePin(VeltraSDK_Handle* handle, GpioPinNumber pin,
                                                 GpioFunctionality functionality, bool hasLevel,
                                                 GpioLogicLevel level);

/**
 * @brief Drives a pin; sends 0x1402.
 * @param handle the handle.
 * @param pin the pin, passed on unchanged.
 * @param level the level, passed on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_GpioDigitalWrite(VeltraSDK_Handle* handle, GpioPinNumber pin,
                                                 GpioLogicLevel level);

/**
 * @brief Reads a pin; sends 0x1403.
 * @param handle the handle.
 * @param pin the pin, passed on unchanged.
 * @param[out] level receives the pin's level, also a value that is no enumerator; written whenever
 *                   a response arrived. Must not be null.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_GpioDigitalRead(VeltraSDK_Handle* handle, GpioPinNumber pin,
                                                GpioLogicLevel* level);

/**
 * @brief Arms a pin's interrupt; sends 0x1404.
 *
 * Interrupts arrive as notifications of kind #NotificationKind_Gpio.
 *
 * @param handle the handle.
 * @param pin the pin, passed on unchanged.
 * @param trigger what makes the pin send an interrupt, passed on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_GpioConfigureInterrupt(VeltraSDK_Handle* handle, GpioPinNumber pin,
                                                       GpioTriggerType trigger);

/**
 * @brief Disarms a pin's interrupt; sends 0x1405.
 * @param handle the handle.
 * @param pin the pin, passed on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_GpioDisableInterrupt(VeltraSDK_Handle* handle, GpioPinNumber pin);

/** @} */

/** @name I3C bus */
/** @{ */

/**
 * @brief Sets the I3C bus voltage; sends 0x0404.
 * @param handle the handle.
 * @param millivolts the voltage in mV.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cSetBusVoltage(VeltraSDK_Handle* handle, uint16_t millivolts);

/**
 * @brief Initialises the controller; sends 0x1901.
 * @param handle the handle.
 * @param pushPullRate the SCL rate of push-pull phases, an #I3cPushPullRate; its low byte is passed
 *                     on unchanged.
 * @param openDrainRate the SCL rate of open-drain phases, an #I3cOpenDrainTransferRate; its low
 *                      byte is passed on unchanged.
 * @param i2cRate the SCL rate of legacy I2C transfers, an #I2cTransferRate; its low byte is passed
 *                on unchanged.
 * @param driveStrength the drive strength of the pins, an #I3cDriveStrength; its low byte is passed
 *                      on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cControllerInit(VeltraSDK_Handle* handle,
                                                  I3cPushPullRate pushPullRate,
                                                  I3cOpenDrainTransferRate openDrainRate,
                                                  I2cTransferRate i2cRate,
                                                  I3cDriveStrength driveStrength);

/**
 * @brief Changes the parameters of the initialised controller; sends 0x1902.
 * @param handle the handle.
 * @param pushPullRate the SCL rate of push-pull phases, an #I3cPushPullRate; its low byte is passed
 *                     on unchanged.
 * @param openDrainRate the SCL rate of open-drain phases, an #I3cOpenDrainTransferRate; its low
 *                      byte is passed on unchanged.
 * @param i2cRate the SCL rate of legacy I2C transfers, an #I2cTransferRate; its low byte is passed
 *                on unchanged.
 * @param driveStrength the drive strength of the pins, an #I3cDriveStrength; its low byte is passed
 *                      on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cSetParameters(VeltraSDK_Handle* handle,
                                                 I3cPushPullRate pushPullRate,
                                                 I3cOpenDrainTransferRate openDrainRate,
                                                 I2cTransferRate i2cRate,
                                                 I3cDriveStrength driveStrength);

/**
 * @brief Resets the bus; sends 0x1905.
 * @param handle the handle.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cResetBus(VeltraSDK_Handle* handle);

/**
 * @brief Initialises the bus with the targets that it is to hold; sends 0x1904.
 *
 * Targets that join the bus arrive as notifications of kind #NotificationKind_I3cHotJoin, in-band
 * interrupts as notifications of kind #NotificationKind_I3cIbi.
 *
 * @param handle the handle.
 * @param targets the records, sent as they are; must not be null unless @p count is 0, whatever the
 *                handle.
 * @param count the number of records, 0 to 255.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cInitBus(VeltraSDK_Handle* handle, const I3cTargetInfo* targets,
                                           uint8_t count);

/**
 * @brief Reads the controller's device table; sends 0x1906.
 * @param handle the handle.
 * @param[out] table receives the records; written only when the result is 0. Null is refused, also
 *                   for capacity 0.
 * @param capacity the records that @p table holds; further ones are dropped without notice.
 * @param[out] count receives the number of records stored; written only when the result is 0. Null
 *                   is refused.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cGetDeviceTable(VeltraSDK_Handle* handle, I3cTargetInfo* table,
                                                  uint8_t capacity, uint8_t* count);

/**
 * @brief Changes how the controller treats one target; sends 0x1907.
 * @param handle the handle.
 * @param address the target's dynamic address or the legacy I2C device's static one, 7 bits,
 *                unshifted.
 * @param configuration how the controller treats the target, passed on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cSetTargetDeviceConfiguration(
    VeltraSDK_Handle* handle, uint8_t address, I3cTargetConfiguration configuration);

/** @} */

/** @name I3C private transfers */
/** @{ */

/**
 * @brief Writes to a target in SDR mode; sends 0x1908.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param subAddress the sub-address, sent in the order given; null with a nonzero length is
 *                   refused.
 * @param subAddressLength the bytes of it, 0 to 4; more are refused.
 * @param data the bytes to write; null with a nonzero length is refused.
 * @param dataLength the bytes of it, 0 to 65535.
 * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cSdrWrite(VeltraSDK_Handle* handle, uint8_t address,
                                            const uint8_t* subAddress, uint8_t subAddressLength,
                                            const uint8_t* data, uint16_t dataLength,
                                            I3cTransferFlags flags);

/**
 * @brief Reads from a target in SDR mode; sends 0x1908.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param subAddress the sub-address, sent in the order given; null with a nonzero length is
 *                   refused.
 * @param subAddressLength the bytes of it, 0 to 4; more are refused.
 * @param length the number of bytes to read.
 * @param[out] data receives as many bytes as the response counts, at most 65535: give it that room
 *                  unless the adapter is trusted to return no more than was asked for; written only
 *                  when the result is 0. Null is refused.
 * @param[out] count receives the number of bytes stored; written only when the result is 0. Null is
 *                   refused.
 * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cSdrRead(VeltraSDK_Handle* handle, uint8_t address,
                                           const uint8_t* subAddress, uint8_t subAddressLength,
                                           uint16_t length, uint8_t* data, uint16_t* count,
                                           I3cTransferFlags flags);

/**
 * @brief Writes to a target in HDR-DDR mode; sends 0x1908.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param hdrCommand the HDR command code, passed on unchanged.
 * @param data the bytes to write; null with a nonzero length is refused.
 * @param dataLength the bytes of it, 0 to 65535.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cHdrDdrWrite(VeltraSDK_Handle* handle, uint8_t address,
                                               uint8_t hdrCommand, const uint8_t* data,
                                               uint16_t dataLength);

/**
 * @brief Reads from a target in HDR-DDR mode; sends 0x1908.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param hdrCommand the HDR command code, passed on unchanged.
 * @param length the number of bytes to read.
 * @param[out] count receives the number of bytes stored; written only when the result is 0. Null is
 *                   refused.
 * @param[out] data receives as many bytes as the response counts, at most 65535: give it that room
 *                  unless the adapter is trusted to return no more than was asked for; written only
 *                  when the result is 0. Null is refused.
 * @return the result code.
 *
 * @warning The count pointer stands before the buffer, the reverse of the other reads.
 */
VELTRASDK_API int16_t VeltraSDK_I3cHdrDdrRead(VeltraSDK_Handle* handle, uint8_t address,
                                              uint8_t hdrCommand, uint16_t length, uint16_t* count,
                                              uint8_t* data);

/**
 * @brief Writes to a legacy I2C device on the I3C bus; sends 0x1908.
 * @param handle the handle.
 * @param address the device's static address, 7 bits, unshifted.
 * @param subAddress the sub-address, sent in the order given; null with a nonzero length is
 *                   refused.
 * @param subAddressLength the bytes of it, 0 to 4; more are refused.
 * @param data the bytes to write; null with a nonzero length is refused.
 * @param dataLength the bytes of it, 0 to 65535.
 * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cLegacyI2CWrite(VeltraSDK_Handle* handle, uint8_t address,
                                                  const uint8_t* subAddress,
                                                  uint8_t subAddressLength, const uint8_t* data,
                                                  uint16_t dataLength, I3cTransferFlags flags);

/**
 * @brief Reads from a legacy I2C device on the I3C bus; sends 0x1908.
 * @param handle the handle.
 * @param address the device's static address, 7 bits, unshifted.
 * @param subAddress the sub-address, sent in the order given; null with a nonzero length is
 *                   refused.
 * @param subAddressLength the bytes of it, 0 to 4; more are refused.
 * @param length the number of bytes to read.
 * @param[out] data receives as many bytes as the response counts, at most 65535: give it that room
 *                  unless the adapter is trusted to return no more than was asked for; written only
 *                  when the result is 0. Null is refused.
 * @param[out] count receives the number of bytes stored; written only when the result is 0. Null is
 *                   refused.
 * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cLegacyI2CRead(VeltraSDK_Handle* handle, uint8_t address,
                                                 const uint8_t* subAddress,
                                                 uint8_t subAddressLength, uint16_t length,
                                                 uint8_t* data, uint16_t* count,
                                                 I3cTransferFlags flags);

/**
 * @brief Drives the target reset pattern; sends 0x190A: 0.
 *
 * Each target carries out the reset action that RSTACT has armed.
 *
 * @param handle the handle.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cTargetResetPattern(VeltraSDK_Handle* handle);

/**
 * @brief Drives the HDR exit pattern; sends 0x190A: 1.
 * @param handle the handle.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cHdrExitPattern(VeltraSDK_Handle* handle);

/** @} */

/** @name I3C Common Command Codes: queries */
/** @{ */

/**
 * @brief Reads the provisioned identifier of one target: GETPID, a direct read; sends 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param[out] pid receives as many bytes as the response counts, at most 255: give it that room
 *                 unless the adapter is trusted to return no more than was asked for; written only
 *                 when the result is 0. Null is refused. Most significant byte first; 6 bytes are
 *                 asked for, and a conforming target returns as many.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccGETPID(VeltraSDK_Handle* handle, uint8_t address,
                                             uint8_t* pid);

/**
 * @brief Reads the bus characteristics register of one target: GETBCR, a direct read; sends 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param[out] bcr receives the register, whatever number of bytes the response counts; written
 *                 whenever a response arrived. Null is refused.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccGETBCR(VeltraSDK_Handle* handle, uint8_t address,
                                             uint8_t* bcr);

/**
 * @brief Reads the device characteristics register of one target: GETDCR, a direct read; sends
 * 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param[out] dcr receives the register, whatever number of bytes the response counts; written
 *                 whenever a response arrived. Null is refused.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccGETDCR(VeltraSDK_Handle* handle, uint8_t address,
                                             uint8_t* dcr);

/**
 * @brief Reads the maximum write length of one target: GETMWL, a direct read; sends 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param[out] mwl receives the maximum write length in bytes, whatever number of bytes the response
 *                 counts; written whenever a response arrived. Null is refused.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccGETMWL(VeltraSDK_Handle* handle, uint8_t address,
                                             uint16_t* mwl);

/**
 * @brief Reads the maximum read length of one target: GETMRL, a direct read; sends 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param[out] mrl receives the maximum read length in bytes, whatever number of bytes the response
 *                 counts; written whenever a response arrived. Null is refused.
 * @param[out] ibiPayloadSize receives the maximum size of an in-band interrupt's payload in bytes;
 *                            written only when a response arrived that counts exactly 3 bytes. May
 *                            be null.
 * @param[out] hasIbiPayloadSize set to 0 from the start of the call, also on a link that is not
 *                               connected, and to 1 when a response arrived that counts exactly 3
 *                               bytes; left as it was when the handle or @p mrl is null. May be
 *                               null.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccGETMRL(VeltraSDK_Handle* handle, uint8_t address,
                                             uint16_t* mrl, uint8_t* ibiPayloadSize,
                                             uint8_t* hasIbiPayloadSize);

/**
 * @brief Reads the optional feature capabilities of one target: GETCAPS, a direct read; sends
 * 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param[out] capabilities receives as many bytes as the response counts, at most 255: give it that
 *                          room unless the adapter is trusted to return no more than was asked for;
 *                          written only when the result is 0. Null is refused. In bus order; 4
 *                          bytes are asked for.
 * @param[out] count receives the number of bytes stored; written only when the result is 0. Null is
 *                   refused.
 * @param hasDefiningByte whether @p definingByte is sent.
 * @param definingByte the defining byte, passed on unchanged; not used when @p hasDefiningByte is
 *                     false, which differs from a defining byte of 0.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccGETCAPS(VeltraSDK_Handle* handle, uint8_t address,
                                              uint8_t* capabilities, uint8_t* count,
                                              bool hasDefiningByte, uint8_t definingByte);

/**
 * @brief Reads the status of one target: GETSTATUS, a direct read; sends 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param[out] status receives as many bytes as the response counts, at most 255: give it that room
 *                    unless the adapter is trusted to return no more than was asked for; written
 *                    only when the result is 0. Null is refused. In bus order; 2 bytes are asked
 *                    for.
 * @param[out] count receives the number of bytes stored; written only when the result is 0. Null is
 *                   refused.
 * @param hasDefiningByte whether @p definingByte is sent.
 * @param definingByte the defining byte, passed on unchanged; not used when @p hasDefiningByte is
 *                     false, which differs from a defining byte of 0.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccGETSTATUS(VeltraSDK_Handle* handle, uint8_t address,
                                                uint8_t* status, uint8_t* count,
                                                bool hasDefiningByte, uint8_t definingByte);

/** @} */

/** @name I3C Common Command Codes: settings and broadcasts */
/** @{ */

/**
 * @brief Sets the maximum write length of one target: SETMWL, a direct write; sends 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param mwl the maximum write length in bytes.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccSETMWLDirect(VeltraSDK_Handle* handle, uint8_t address,
                                                   uint16_t mwl);

/**
 * @brief Sets the maximum write length of all targets: SETMWL, a broadcast; sends 0x1909.
 * @param handle the handle.
 * @param mwl the maximum write length in bytes.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccSETMWLBroadcast(VeltraSDK_Handle* handle, uint16_t mwl);

/**
 * @brief Sets the maximum read length of one target: SETMRL, a direct write; sends 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param mrl the maximum read length in bytes.
 * @param hasIbiPayloadSize whether @p ibiPayloadSize is sent.
 * @param ibiPayloadSize the maximum size of an in-band interrupt's payload in bytes; not used when
 *                       @p hasIbiPayloadSize is false.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccSETMRLDirect(VeltraSDK_Handle* handle, uint8_t address,
                                                   uint16_t mrl, bool hasIbiPayloadSize,
                                                   uint8_t ibiPayloadSize);

/**
 * @brief Sets the maximum read length of all targets: SETMRL, a broadcast; sends 0x1909.
 * @param handle the handle.
 * @param mrl the maximum read length in bytes.
 * @param hasIbiPayloadSize whether @p ibiPayloadSize is sent.
 * @param ibiPayloadSize the maximum size of an in-band interrupt's payload in bytes; not used when
 *                       @p hasIbiPayloadSize is false.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccSETMRLBroadcast(VeltraSDK_Handle* handle, uint16_t mrl,
                                                      bool hasIbiPayloadSize,
                                                      uint8_t ibiPayloadSize);

/**
 * @brief Gives one target another dynamic address: SETNEWDA, a direct write; sends 0x1909.
 * @param handle the handle.
 * @param currentAddress the target's present dynamic address, 7 bits, unshifted.
 * @param newAddress the target's new dynamic address, 7 bits, unshifted; bit 7 is dropped.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccSETNEWDA(VeltraSDK_Handle* handle, uint8_t currentAddress,
                                               uint8_t newAddress);

/**
 * @brief Gives the target with a given static address a dynamic one: SETDASA, a direct write; sends
 * 0x1909.
 * @param handle the handle.
 * @param staticAddress the target's static address, 7 bits, unshifted.
 * @param dynamicAddress the target's new dynamic address, 7 bits, unshifted; bit 7 is dropped.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccSETDASA(VeltraSDK_Handle* handle, uint8_t staticAddress,
                                              uint8_t dynamicAddress);

/**
 * @brief Makes targets take their static address as dynamic address: SETAASA, a broadcast; sends
 * 0x1909.
 * @param handle the handle.
 * @param staticAddresses the targets' static addresses, 7 bits, unshifted; must not be null unless
 *                        @p count is 0. Passed on unchanged; their meaning is the adapter's, since
 *                        the code carries none on the bus.
 * @param count the number of addresses, at most 255, since the length field holds it modulo 256.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccSETAASA(VeltraSDK_Handle* handle,
                                              const uint8_t* staticAddresses, size_t count);

/**
 * @brief Enables events of one target: ENEC, a direct write; sends 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param events the events whose bits are set: 0x01 in-band interrupts, 0x02 requests of the
 *               controller role, 0x08 hot-join; passed on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccENECDirect(VeltraSDK_Handle* handle, uint8_t address,
                                                 uint8_t events);

/**
 * @brief Enables events of all targets: ENEC, a broadcast; sends 0x1909.
 * @param handle the handle.
 * @param events the events whose bits are set: 0x01 in-band interrupts, 0x02 requests of the
 *               controller role, 0x08 hot-join; passed on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccENECBroadcast(VeltraSDK_Handle* handle, uint8_t events);

/**
 * @brief Disables events of one target: DISEC, a direct write; sends 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param events the events whose bits are set: 0x01 in-band interrupts, 0x02 requests of the
 *               controller role, 0x08 hot-join; passed on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccDISECDirect(VeltraSDK_Handle* handle, uint8_t address,
                                                  uint8_t events);

/**
 * @brief Disables events of all targets: DISEC, a broadcast; sends 0x1909.
 * @param handle the handle.
 * @param events the events whose bits are set: 0x01 in-band interrupts, 0x02 requests of the
 *               controller role, 0x08 hot-join; passed on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccDISECBroadcast(VeltraSDK_Handle* handle, uint8_t events);

/**
 * @brief Arms or queries the reset action of one target: RSTACT, a direct write or read; sends
 * 0x1909.
 * @param handle the handle.
 * @param address the target's dynamic address, 7 bits, unshifted.
 * @param definingByte of a write the reset action, of a read what is asked for; its low byte is
 *                     passed on unchanged.
 * @param direction #I3cTransferDirection_Write arms the action, #I3cTransferDirection_Read asks for
 *                  one byte. Another value is not refused: it is sent and stores nothing.
 * @param[out] reply receives the byte of a read, whatever number of bytes the response counts;
 *                   written whenever a response arrived, left as it was in any other direction.
 *                   Null is refused for a read.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccRSTACTDirect(VeltraSDK_Handle* handle, uint8_t address,
                                                   I3cTargetResetDefByte definingByte,
                                                   I3cTransferDirection direction, uint8_t* reply);

/**
 * @brief Arms the reset action of all targets: RSTACT, a broadcast; sends 0x1909.
 * @param handle the handle.
 * @param definingByte the reset action; its low byte is passed on unchanged.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccRSTACTBroadcast(VeltraSDK_Handle* handle,
                                                      I3cTargetResetDefByte definingByte);

/**
 * @brief Takes the dynamic addresses of all targets away: RSTDAA, a broadcast; sends 0x1909.
 * @param handle the handle.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccRSTDAA(VeltraSDK_Handle* handle);

/**
 * @brief Assigns dynamic addresses to all targets without one: ENTDAA, a broadcast; sends 0x1909.
 * @param handle the handle.
 * @return the result code.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccENTDAA(VeltraSDK_Handle* handle);

/**
 * @brief Sends any Common Command Code; sends 0x1909.
 *
 * The adapter may know more codes than those that have an operation of their own, and more modes.
 * A value outside its enumeration spills into other fields of the request.
 *
 * @param handle the handle.
 * @param address the target's address, 7 bits, unshifted; 0x7E for a broadcast.
 * @param direction the direction, from bit 0 up.
 * @param mode the bus mode, from bit 1 up.
 * @param optionFlag passed on unchanged; its meaning is the adapter's. The operations named after a
 *                   code pass false.
 * @param type whether there is a defining byte; the low four bits are sent.
 * @param length the length field, passed on unchanged: for a direct code the bytes of the data
 *               phase, for a broadcast the bytes behind the code, the defining byte counted. It is
 *               not compared with @p data.
 * @param code the Common Command Code; its low byte is sent.
 * @param definingByte passed on unchanged; sent as 0 when @p type is
 *                     #I3cCccType_WithoutDefiningByte.
 * @param data the bytes to write; with #I3cTransferDirection_Read they are refused. Null is refused
 *             unless @p dataLength is 0.
 * @param dataLength the number of bytes to write.
 * @param[out] reply receives as many bytes as the response counts, at most @p capacity; further
 *                   ones are dropped without notice. Written only when the result is 0. Null is
 *                   refused unless @p capacity is 0.
 * @param capacity the bytes that @p reply holds; 255 are always enough.
 * @param[out] replyLength receives the number of bytes stored; written only when the result is 0.
 *                         Null is refused unless @p capacity is 0.
 * @return the result code. Also #ResultCode_InvalidArgument when a read has data.
 */
VELTRASDK_API int16_t VeltraSDK_I3cCccTransfer(VeltraSDK_Handle* handle, uint8_t address,
                                               I3cTransferDirection direction, I3cTransferMode mode,
                                               bool optionFlag, I3cCccType type, uint8_t length,
                                               CCC code, uint8_t definingByte, const uint8_t* data,
                                               uint32_t dataLength, uint8_t* reply,
                                               uint8_t capacity, uint8_t* replyLength);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
