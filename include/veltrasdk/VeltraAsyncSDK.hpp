// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * @brief The asynchronous interface: encodes requests and sends them, without waiting.
 */
#ifndef VELTRASDK_VELTRAASYNCSDK_HPP
#define VELTRASDK_VELTRAASYNCSDK_HPP

#include <veltrasdk/declarations.h>
#include <veltrasdk/gpio.h>
#include <veltrasdk/i3c.h>
#include <veltrasdk/result.h>
#include <veltrasdk/spi.h>
#include <veltrasdk/uart.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/**
 * @brief Encodes one command per operation and hands it to the link, without waiting.
 *
 * @par Encoders
 * An encoder sends one frame: the transaction identifier, which the adapter repeats in its response
 * and which is 1 to 65535, since 0 marks the adapter's notifications; the command code; and the
 * payload, whose fields its description lists in order. A field has one byte unless a width is
 * given; 16- and 32-bit values go least significant byte first. Arguments are sent as given, known
 * to the adapter or not, unless their description says that they are refused. What the responses
 * hold is described in docs/protocol.md.
 *
 * @par Result codes
 * Every encoder returns
 * - #ResultCode_Success when the request was handed to the link; whether it was written or
 *   answered is not known;
 * - #ResultCode_NotConnected when the link is not connected; nothing was sent;
 * - #ResultCode_InvalidArgument when an argument was refused; nothing was sent.
 *
 * @par Threads
 * Operations on one object must not overlap. The response callback runs on the object's polling
 * thread, one frame at a time; it must not call any operation of the same object, nor replace the
 * callback, which would destroy the running one. Constructing, connecting, disconnecting, entering
 * boot mode and destroying must not overlap between any two objects of the process, since hidapi's
 * own calls are not safe against each other; they may with VeltraSDK::shareHidapi(). After fork()
 * with a connected object the child may only call exec() or _exit().
 *
 * @par Exceptions
 * The library throws nothing of its own. What its standard facilities throw (std::bad_alloc, say)
 * leaves the operation; leaving the response callback, it ends the process.
 */
class VELTRASDK_API VeltraAsyncSDK {
public:
    /**
     * @brief Creates an object that is not connected, and initialises hidapi.
     *
     * @warning Without VeltraSDK::shareHidapi() connect one object at a time: destroying any object
     * shuts hidapi down for the whole process, which hidapi's libusb back end does not survive
     * while another object is connected.
     */
    VeltraAsyncSDK();

    /**
     * @brief Closes the link and shuts hidapi down, whatever other objects exist; where it is
     * shared, with the last one only.
     *
     * No callback runs after the destructor has returned.
     *
     * @warning Without VeltraSDK::shareHidapi() destroying one object while another one is
     * connected makes hidapi's libusb back end abort the process: connect one object at a time.
     */
    ~VeltraAsyncSDK();

    VeltraAsyncSDK(const VeltraAsyncSDK&) = delete;
    VeltraAsyncSDK& operator=(const VeltraAsyncSDK&) = delete;

    /**
     * @brief Installs the receiver of frames, which replaces the one before.
     *
     * Install it while not connected: it is replaced without a lock. Frames that arrive before the
     * first one is installed are dropped. A report that comes short is filled up with what earlier
     * reports left, not with 0.
     *
     * Every call must return in less than 1 ms at full speed, 0.1 ms at high speed: one report time
     * with about 20 us to spare. One stall may last about 30 report times: 30 ms at full speed, 4
     * ms at high speed. hidapi keeps 32 unread reports beside the one at hand, and then silently
     * drops the oldest, which may be a response.
     *
     * @param callback receives each whole message, of any length: a response, or with transaction
     *                 identifier 0 a notification. It runs on the polling thread, and the message
     *                 is valid only during the call. An empty function is not refused: the next
     *                 message then ends the process.
     */
    void onResponse(std::function<void(const std::vector<uint8_t>&)> callback);

    /**
     * @brief Opens the link to the adapter with a HID device path.
     *
     * On an open link nothing is searched and it stays as it is. An adapter that was unplugged
     * leaves its link open: disconnect() before connecting again.
     *
     * @param path the HID device path, matched exactly; empty selects the first known adapter.
     * @return whether the link is open; false when no such adapter is there or it cannot be opened.
     * @throws std::system_error when the polling thread cannot be started; nothing is left open.
     */
    bool connect(const std::string& path);

    /**
     * @brief Opens the link to the adapter with a serial number.
     *
     * On an open link nothing is searched and it stays as it is. An adapter that was unplugged
     * leaves its link open: disconnect() before connecting again. Without write permission on the
     * adapter's device node its serial number cannot be read, and the adapter is not found.
     *
     * @param serialNumber the USB serial number in UTF-8, matched exactly; empty selects the first
     *                     known adapter.
     * @return whether the link is open; false when no such adapter is there or it cannot be opened.
     * @throws std::system_error when the polling thread cannot be started; nothing is left open.
     * @throws std::range_error when a serial number met in the search, of any HID device, has a
     *         code point above 0x10FFFF.
     */
    bool connectWithSerialNumber(const std::string& serialNumber);

    /**
     * @brief Closes the link; sends nothing.
     *
     * It takes about 100 ms at most, plus a running callback's time. No callback runs after the
     * return. The callback stays installed and serves the next connection. On a closed link nothing
     * happens.
     */
    void disconnect();

    /**
     * @brief Tells whether the link is connected.
     * @return whether the last connect call succeeded and the link was not closed since. An adapter
     *         that is unplugged leaves the link connected.
     */
    [[nodiscard]] bool isConnected() const;

    /** @name System */
    /** @{ */

    /**
     * @brief Sends 0x0402 and closes the link at once; no response is awaited.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @return the result code of the encoder. On #ResultCode_Success the link is closed, as by
     *         disconnect().
     */
    uint16_t enterBootMode(uint16_t transactionId);

    /**
     * @brief Sends 0x0407: index.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param index the string's index, 1 to 5, passed on unchanged.
     * @return the result code of the encoder.
     */
    uint16_t getUsbString(uint16_t transactionId, uint8_t index);

    /** @} */

    /** @name I/O voltage of I2C, SPI, UART and GPIO */
    /** @{ */

    /**
     * @brief Sends 0x0405: millivolts (16 bits), flag.
     *
     * The voltage of I2C, SPI, UART and GPIO is one setting, and each of the five functions that
     * set it sends this request.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param millivolts the voltage in mV.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code of the encoder.
     */
    uint16_t setI2cSpiUartGpioVoltage(uint16_t transactionId, uint16_t millivolts, bool flag);

    /**
     * @brief Sends 0x0405: millivolts (16 bits), flag.
     *
     * The voltage of I2C, SPI, UART and GPIO is one setting, and each of the five functions that
     * set it sends this request.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param millivolts the voltage in mV.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code of the encoder.
     */
    uint16_t i2cSetBusVoltage(uint16_t transactionId, uint16_t millivolts, bool flag);

    /**
     * @brief Sends 0x0405: millivolts (16 bits), flag.
     *
     * The voltage of I2C, SPI, UART and GPIO is one setting, and each of the five functions that
     * set it sends this request.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param millivolts the voltage in mV.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code of the encoder.
     */
    uint16_t spiSetBusVoltage(uint16_t transactionId, uint16_t millivolts, bool flag);

    /**
     * @brief Sends 0x0405: millivolts (16 bits), flag.
     *
     * The voltage of I2C, SPI, UART and GPIO is one setting, and each of the five functions that
     * set it sends this request.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param millivolts the voltage in mV.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code of the encoder.
     */
    uint16_t uartSetBusVoltage(uint16_t transactionId, uint16_t millivolts, bool flag);

    /**
     * @brief Sends 0x0405: millivolts (16 bits), flag.
     *
     * The voltage of I2C, SPI, UART and GPIO is one setting, and each of the five functions that
     * set it sends this request.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param millivolts the voltage in mV.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code of the encoder.
     */
    uint16_t gpioSetVoltage(uint16_t transactionId, uint16_t millivolts, bool flag);

    /** @} */

    /** @name I2C */
    /** @{ */

    /**
     * @brief Sends 0x0901: bus index, clock in Hz (32 bits), option.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param busIndex the I2C controller, 0 or 1.
     * @param clockHz the clock rate in Hz.
     * @param option passed on unchanged; its meaning is the adapter's.
     * @return the result code of the encoder.
     */
    uint16_t i2cControllerInit(uint16_t transactionId, uint8_t busIndex, uint32_t clockHz,
                               uint8_t option);

    /**
     * @brief Sends 0x0902: bus index, clock in Hz (32 bits), option.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param busIndex the I2C controller, 0 or 1.
     * @param clockHz the clock rate in Hz.
     * @param option passed on unchanged; its meaning is the adapter's.
     * @return the result code of the encoder.
     */
    uint16_t i2cSetParameters(uint16_t transactionId, uint8_t busIndex, uint32_t clockHz,
                              uint8_t option);

    /**
     * @brief Sends 0x0802: bus index, setting.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param busIndex the I2C controller, 0 or 1.
     * @param setting passed on unchanged; its meaning is the adapter's.
     * @return the result code of the encoder.
     */
    uint16_t i2cSetPullUpResistors(uint16_t transactionId, uint8_t busIndex, uint8_t setting);

    /**
     * @brief Sends 0x0906: bus index, flag.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param busIndex the I2C controller, 0 or 1.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code of the encoder.
     */
    uint16_t i2cScanBus(uint16_t transactionId, uint8_t busIndex, bool flag);

    /**
     * @brief Sends 0x0904: bus index, data length (16 bits), target address, register-address
     * length, register address (32 bits), flag, data.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param busIndex the I2C controller, 0 or 1.
     * @param targetAddress the target's address, 7 bits, unshifted.
     * @param registerAddress 0 to 4 bytes, most significant first; more are refused.
     * @param data the bytes to write, at most 65535, since the length field holds their number
     *             modulo 65536.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code of the encoder.
     */
    uint16_t i2cWrite(uint16_t transactionId, uint8_t busIndex, uint8_t targetAddress,
                      const std::vector<uint8_t>& registerAddress, const std::vector<uint8_t>& data,
                      bool flag);

    /**
     * @brief Sends 0x0905: bus index, length (16 bits), target address, register-address length,
     * register address (32 bits), flag.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param busIndex the I2C controller, 0 or 1.
     * @param targetAddress the target's address, 7 bits, unshifted.
     * @param registerAddress 0 to 4 bytes, most significant first; more are refused.
     * @param length the number of bytes to read.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code of the encoder.
     */
    uint16_t i2cRead(uint16_t transactionId, uint8_t busIndex, uint8_t targetAddress,
                     const std::vector<uint8_t>& registerAddress, uint16_t length, bool flag);

    /** @} */

    /** @name SPI */
    /** @{ */

    /**
     * @brief Sends 0x0D01: bit order, mode, data width, chip select, polarity, clock in Hz (32
     * bits).
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param bitOrder the bit order, passed on unchanged.
     * @param mode the clock polarity and phase, passed on unchanged.
     * @param dataWidth the word width, passed on unchanged.
     * @param chipSelect the chip-select line that transfers assert, passed on unchanged.
     * @param polarity the level that it is asserted with, passed on unchanged.
     * @param clockHz the clock rate in Hz.
     * @return the result code of the encoder.
     */
    uint16_t spiControllerInit(uint16_t transactionId, SpiBitOrder bitOrder, SpiMode mode,
                               SpiDataWidth dataWidth, SpiChipSelect chipSelect,
                               SpiChipSelectPolarity polarity, uint32_t clockHz);

    /**
     * @brief Sends 0x0D02: bit order, mode, data width, chip select, polarity, clock in Hz (32
     * bits).
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param bitOrder the bit order, passed on unchanged.
     * @param mode the clock polarity and phase, passed on unchanged.
     * @param dataWidth the word width, passed on unchanged.
     * @param chipSelect the chip-select line that transfers assert, passed on unchanged.
     * @param polarity the level that it is asserted with, passed on unchanged.
     * @param clockHz the clock rate in Hz.
     * @return the result code of the encoder.
     */
    uint16_t spiSetParameters(uint16_t transactionId, SpiBitOrder bitOrder, SpiMode mode,
                              SpiDataWidth dataWidth, SpiChipSelect chipSelect,
                              SpiChipSelectPolarity polarity, uint32_t clockHz);

    /**
     * @brief Sends 0x0D04: number of bytes to send (16 bits), requested length (16 bits), data.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param send the bytes to send, not changed; at most 65535, since the length field holds their
     *             number modulo 65536.
     * @param length the requested length in bytes.
     * @return the result code of the encoder.
     */
    uint16_t spiTransfer(uint16_t transactionId, std::vector<uint8_t>& send, uint16_t length);

    /** @} */

    /** @name UART */
    /** @{ */

    /**
     * @brief Sends 0x1002: baud rate, handshake, parity, data size, stop bits.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param baudRate the line rate, passed on unchanged.
     * @param handshake the hardware flow control, passed on unchanged.
     * @param parity the parity bit, passed on unchanged.
     * @param dataSize the number of data bits, passed on unchanged.
     * @param stopBit the number of stop bits, passed on unchanged.
     * @return the result code of the encoder.
     */
    uint16_t uartInit(uint16_t transactionId, UartBaudRate baudRate, UartHwHandshake handshake,
                      UartParity parity, UartDataSize dataSize, UartStopBit stopBit);

    /**
     * @brief Sends 0x1003: baud rate, handshake, parity, data size, stop bits.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param baudRate the line rate, passed on unchanged.
     * @param handshake the hardware flow control, passed on unchanged.
     * @param parity the parity bit, passed on unchanged.
     * @param dataSize the number of data bits, passed on unchanged.
     * @param stopBit the number of stop bits, passed on unchanged.
     * @return the result code of the encoder.
     */
    uint16_t uartSetParameters(uint16_t transactionId, UartBaudRate baudRate,
                               UartHwHandshake handshake, UartParity parity, UartDataSize dataSize,
                               UartStopBit stopBit);

    /**
     * @brief Sends 0x1005: number of bytes (16 bits), data.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param message the bytes to send, at most 65535, since the length field holds their number
     *                modulo 65536.
     * @return the result code of the encoder.
     */
    uint16_t uartSendMessage(uint16_t transactionId, const std::vector<uint8_t>& message);

    /** @} */

    /** @name GPIO */
    /** @{ */

    /**
     * @brief Sends 0x1401: pin, functionality, and the level for #GpioFunctionality_Output only.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param pin the pin, passed on unchanged.
     * @param functionality what the pin is used for, passed on unchanged.
     * @param level the initial level of an output, passed on unchanged; not sent for another
     *              functionality than #GpioFunctionality_Output.
     * @return the result code of the encoder.
     */
    uint16_t gpioConfigurePin(uint16_t transactionId, GpioPinNumber pin,
                              GpioFunctionality functionality, GpioLogicLevel level);

    /**
     * @brief Sends 0x1402: pin, level.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param pin the pin, passed on unchanged.
     * @param level the level, passed on unchanged.
     * @return the result code of the encoder.
     */
    uint16_t gpioDigitalWrite(uint16_t transactionId, GpioPinNumber pin, GpioLogicLevel level);

    /**
     * @brief Sends 0x1403: pin.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param pin the pin, passed on unchanged.
     * @return the result code of the encoder.
     */
    uint16_t gpioDigitalRead(uint16_t transactionId, GpioPinNumber pin);

    /**
     * @brief Sends 0x1404: pin, trigger.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param pin the pin, passed on unchanged.
     * @param trigger what makes the pin send an interrupt, passed on unchanged.
     * @return the result code of the encoder.
     */
    uint16_t gpioConfigureInterrupt(uint16_t transactionId, GpioPinNumber pin,
                                    GpioTriggerType trigger);

    /**
     * @brief Sends 0x1405: pin.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param pin the pin, passed on unchanged.
     * @return the result code of the encoder.
     */
    uint16_t gpioDisableInterrupt(uint16_t transactionId, GpioPinNumber pin);

    /** @} */

    /** @name I3C bus */
    /** @{ */

    /**
     * @brief Sends 0x0404: millivolts (16 bits).
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param millivolts the voltage in mV.
     * @return the result code of the encoder.
     */
    uint16_t i3cSetBusVoltage(uint16_t transactionId, uint16_t millivolts);

    /**
     * @brief Sends 0x1901: push-pull rate, open-drain rate, I2C rate, drive strength.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param pushPullRate the SCL rate of push-pull phases, an #I3cPushPullRate; its low byte is
     *                     passed on unchanged.
     * @param openDrainRate the SCL rate of open-drain phases, an #I3cOpenDrainTransferRate; its low
     *                      byte is passed on unchanged.
     * @param i2cRate the SCL rate of legacy I2C transfers, an #I2cTransferRate; its low byte is
     *                passed on unchanged.
     * @param driveStrength the drive strength of the pins, an #I3cDriveStrength; its low byte is
     *                      passed on unchanged.
     * @return the result code of the encoder.
     */
    uint16_t i3cControllerInit(uint16_t transactionId, uint8_t pushPullRate, uint8_t openDrainRate,
                               uint8_t i2cRate, uint8_t driveStrength);

    /**
     * @brief Sends 0x1902: push-pull rate, open-drain rate, I2C rate, drive strength.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param pushPullRate the SCL rate of push-pull phases, an #I3cPushPullRate; its low byte is
     *                     passed on unchanged.
     * @param openDrainRate the SCL rate of open-drain phases, an #I3cOpenDrainTransferRate; its low
     *                      byte is passed on unchanged.
     * @param i2cRate the SCL rate of legacy I2C transfers, an #I2cTransferRate; its low byte is
     *                passed on unchanged.
     * @param driveStrength the drive strength of the pins, an #I3cDriveStrength; its low byte is
     *                      passed on unchanged.
     * @return the result code of the encoder.
     */
    uint16_t i3cSetParameters(uint16_t transactionId, uint8_t pushPullRate, uint8_t openDrainRate,
                              uint8_t i2cRate, uint8_t driveStrength);

    /**
     * @brief Sends 0x1904: number of records, the records (16 bytes each).
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param targets the records, sent as they are, at most 255; their number is sent modulo 256.
     * @return the result code of the encoder.
     */
    uint16_t i3cInitBus(uint16_t transactionId, std::vector<I3cTargetInfo> targets);

    /**
     * @brief Sends 0x1905, without a payload.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @return the result code of the encoder.
     */
    uint16_t i3cResetBus(uint16_t transactionId);

    /**
     * @brief Sends 0x1906, without a payload.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @return the result code of the encoder.
     */
    uint16_t i3cGetDeviceTable(uint16_t transactionId);

    /**
     * @brief Sends 0x1907: address, configuration.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param address the target's dynamic address or the legacy I2C device's static one, 7 bits,
     *                unshifted.
     * @param configuration how the controller treats the target, passed on unchanged.
     * @return the result code of the encoder.
     */
    uint16_t i3cSetTargetDeviceConfiguration(uint16_t transactionId, uint8_t address,
                                             I3cTargetConfiguration configuration);

    /** @} */

    /** @name I3C private transfers */
    /** @{ */

    /**
     * @brief Sends 0x1908, an SDR write: target address, transfer control, HDR command code,
     * sub-address length, sub-address (4 bytes), number of bytes (16 bits), data.
     *
     * The transfer control holds 0 in bit 0 (write), 0 in bits 1 and 2 (SDR) and the flags in bits
     * 3 to 7. The HDR command code is 0. Zeros fill the sub-address up.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param subAddress 0 to 4 bytes, sent in the order given; more are refused.
     * @param data the bytes to write, at most 65535, since the length field holds their number
     *             modulo 65536.
     * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
     * @return the result code of the encoder.
     */
    uint16_t i3cSdrWrite(uint16_t transactionId, uint8_t address,
                         const std::vector<uint8_t>& subAddress, const std::vector<uint8_t>& data,
                         I3cTransferFlags flags);

    /**
     * @brief Sends 0x1908, an SDR read: target address, transfer control, HDR command code,
     * sub-address length, sub-address (4 bytes), number of bytes (16 bits).
     *
     * The transfer control holds 1 in bit 0 (read), 0 in bits 1 and 2 (SDR) and the flags in bits 3
     * to 7. The HDR command code is 0. Zeros fill the sub-address up.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param subAddress 0 to 4 bytes, sent in the order given; more are refused.
     * @param length the number of bytes to read.
     * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
     * @return the result code of the encoder.
     */
    uint16_t i3cSdrRead(uint16_t transactionId, uint8_t address,
                        const std::vector<uint8_t>& subAddress, uint16_t length,
                        I3cTransferFlags flags);

    /**
     * @brief Sends 0x1908, an HDR-DDR write: target address, transfer control, HDR command code,
     * sub-address length, sub-address (4 bytes), number of bytes (16 bits), data.
     *
     * The transfer control holds 0 in bit 0 (write), 1 in bits 1 and 2 (HDR-DDR) and no flags.
     * Sub-address and its length are 0.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param hdrCommand the HDR command code, passed on unchanged.
     * @param data the bytes to write, at most 65535, since the length field holds their number
     *             modulo 65536.
     * @return the result code of the encoder.
     */
    uint16_t i3cHdrDdrWrite(uint16_t transactionId, uint8_t address, uint8_t hdrCommand,
                            const std::vector<uint8_t>& data);

    /**
     * @brief Sends 0x1908, an HDR-DDR read: target address, transfer control, HDR command code,
     * sub-address length, sub-address (4 bytes), number of bytes (16 bits).
     *
     * The transfer control holds 1 in bit 0 (read), 1 in bits 1 and 2 (HDR-DDR) and no flags.
     * Sub-address and its length are 0.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param hdrCommand the HDR command code, passed on unchanged.
     * @param length the number of bytes to read.
     * @return the result code of the encoder.
     */
    uint16_t i3cHdrDdrRead(uint16_t transactionId, uint8_t address, uint8_t hdrCommand,
                           uint16_t length);

    /**
     * @brief Sends 0x1908, a legacy I2C write: target address, transfer control, HDR command code,
     * sub-address length, sub-address (4 bytes), number of bytes (16 bits), data.
     *
     * The transfer control holds 0 in bit 0 (write), 2 in bits 1 and 2 (legacy I2C) and the flags
     * in bits 3 to 7. The HDR command code is 0. Zeros fill the sub-address up.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param address the device's static address, 7 bits, unshifted.
     * @param subAddress 0 to 4 bytes, sent in the order given; more are refused.
     * @param data the bytes to write, at most 65535, since the length field holds their number
     *             modulo 65536.
     * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
     * @return the result code of the encoder.
     */
    uint16_t i3cLegacyI2cWrite(uint16_t transactionId, uint8_t address,
                               const std::vector<uint8_t>& subAddress,
                               const std::vector<uint8_t>& data, I3cTransferFlags flags);

    /**
     * @brief Sends 0x1908, a legacy I2C read: target address, transfer control, HDR command code,
     * sub-address length, sub-address (4 bytes), number of bytes (16 bits).
     *
     * The transfer control holds 1 in bit 0 (read), 2 in bits 1 and 2 (legacy I2C) and the flags in
     * bits 3 to 7. The HDR command code is 0. Zeros fill the sub-address up.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param address the device's static address, 7 bits, unshifted.
     * @param subAddress 0 to 4 bytes, sent in the order given; more are refused.
     * @param length the number of bytes to read.
     * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
     * @return the result code of the encoder.
     */
    uint16_t i3cLegacyI2cRead(uint16_t transactionId, uint8_t address,
                              const std::vector<uint8_t>& subAddress, uint16_t length,
                              I3cTransferFlags flags);

    /**
     * @brief Sends 0x190A: 0, the target reset pattern.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @return the result code of the encoder.
     */
    uint16_t i3cTargetResetPattern(uint16_t transactionId);

    /**
     * @brief Sends 0x190A: 1, the HDR exit pattern.
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @return the result code of the encoder.
     */
    uint16_t i3cHdrExitPattern(uint16_t transactionId);

    /** @} */

    /** @name I3C Common Command Codes */
    /** @{ */

    /**
     * @brief Sends 0x1909, any Common Command Code: target address, transfer control, length, code,
     * defining byte, data.
     *
     * The transfer control holds the direction in bit 0, the mode in bits 1 and 2, the option flag
     * in bit 3 and the type in bits 4 to 7. A value outside its enumeration spills into the bits
     * above.
     *
     * @param transactionId the identifier that the response repeats, 1 to 65535.
     * @param address the target's address, 7 bits, unshifted; 0x7E for a broadcast.
     * @param direction the direction, from bit 0 up.
     * @param mode the bus mode, from bit 1 up.
     * @param optionFlag passed on unchanged; its meaning is the adapter's. The operations named
     *                   after a code pass false.
     * @param type whether there is a defining byte; the low four bits are sent.
     * @param length the length field, passed on unchanged: for a direct code the bytes of the data
     *               phase, for a broadcast the bytes behind the code, the defining byte counted. It
     *               is not compared with @p data.
     * @param code the Common Command Code; its low byte is sent.
     * @param definingByte passed on unchanged; sent as 0 when @p type is
     *                     #I3cCccType_WithoutDefiningByte.
     * @param data the bytes to write; with #I3cTransferDirection_Read they are refused.
     * @return the result code of the encoder. Also #ResultCode_InvalidArgument when a read has
     *         data.
     */
    uint16_t i3cCccTransfer(uint16_t transactionId, uint8_t address, I3cTransferDirection direction,
                            I3cTransferMode mode, bool optionFlag, I3cCccType type, uint8_t length,
                            CCC code, uint8_t definingByte, const std::vector<uint8_t>& data);

    /** @} */

private:
    // The blocking class learns from the link what no encoder tells.
    friend class VeltraSDK;
    class Link;

    std::unique_ptr<Link> link;
};

#endif
