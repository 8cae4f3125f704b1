// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * @brief The blocking interface: each operation sends one request and waits for its response.
 */
#ifndef VELTRASDK_VELTRASDK_HPP
#define VELTRASDK_VELTRASDK_HPP

#include <veltrasdk/Notification.hpp>
#include <veltrasdk/adapters.h>
#include <veltrasdk/declarations.h>
#include <veltrasdk/gpio.h>
#include <veltrasdk/i3c.h>
#include <veltrasdk/result.h>
#include <veltrasdk/spi.h>
#include <veltrasdk/status.h>
#include <veltrasdk/uart.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class CommunicationManager;

/**
 * @brief Drives one adapter: each operation sends one request and waits for the response.
 *
 * @par Result codes
 * Every operation returns the adapter's status, 0 for success, unless its description says
 * otherwise, or one of #ResultCode:
 * - #ResultCode_NotConnected at once, with nothing sent, when the link is not connected;
 * - #ResultCode_NoResponse when no response came within the time-out, also when the request could
 *   not be written;
 * - #ResultCode_InvalidArgument at once, with nothing sent, for an argument that is refused;
 * - those that its description adds.
 *
 * @par Refused arguments
 * "Refused" means #ResultCode_InvalidArgument. When several reasons apply, the first of these is
 * told: what i2cScanBus() refuses; a link that is not connected; what the request's encoder
 * refuses, a register address or sub-address of more than 4 bytes. All other values are left to the
 * adapter to judge.
 *
 * @par Arguments
 * Inputs are copied into the request and outputs are written during the call; nothing of either is
 * kept afterwards, the notification handler excepted.
 *
 * @par Outputs
 * Outputs are written whenever a response arrived, whatever its status, and left as they were when
 * none did. Bytes that a response announces but does not carry read as 0. A report that comes
 * short is filled up with what earlier reports left, not with 0. Four functions deviate and say
 * how: getUsbString(), getDeviceInfo(), i2cScanBus() and i3cCccRSTACTDirect().
 *
 * @par Time-outs
 * The time-out holds for each operation, from the moment at which its request was written, and goes
 * on while the process is stopped or gets no processor: a response that came in time may then be
 * reported as #ResultCode_NoResponse, and is a late one. Writing has a limit of its own: hidapi
 * gives each report 1 s at most, whatever the time-out.
 *
 * @par Late responses
 * Without strict mode the next response is taken as the answer of the operation that waits,
 * whatever request it answers. A response that arrives after its operation has timed out completes
 * the next operation at once, whose own response then is the late one: the object stays one
 * response behind, also after disconnecting. getDeviceInfo() and getUsbString() tell: they alone
 * check that a response is their own, and return #ResultCode_UnexpectedResponse when it is not. To
 * get back in step, give the adapter the time to answer, destroy the object, and connect a new one.
 *
 * @par Strict mode
 * setStrict() switches it on; use it wherever two results must not be mixed up. Then
 * - an operation's answer is the response with its own transaction identifier and command code.
 *   Every other response is dropped and counted, so that a late one harms nobody;
 * - a read error, as an unplug brings one about, ends every operation at once with
 *   #ResultCode_NotConnected, whatever its time-out, and every later one until the link
 *   has been closed and opened. A request that cannot be written is not written any further, and
 *   waits up to 100 ms for a read error: without one the result is #ResultCode_NoResponse, since an
 *   adapter that stalls has not gone;
 * - operations may be called from several threads. They take turns in the order of the calls, and
 *   the time-out runs from the writing of the own request. disconnect(), enterBootMode() and the
 *   destructor end the operations of other threads with #ResultCode_NotConnected, and wait until
 *   those have left.
 *
 * @par Threads
 * Without strict mode operations on one object must not overlap. The notification handler runs on
 * the object's polling thread, one notification at a time, while an operation may be waiting in
 * another thread; it must not call any operation of the same object, nor replace the handler.
 * Constructing, connecting, disconnecting, entering boot mode, destroying and adapters() must not
 * overlap between any two objects of the process, since hidapi's own calls are not safe against
 * each other; they may with shareHidapi(). After fork() with a connected object the child may only
 * call exec() or _exit().
 *
 * @par Exceptions
 * The library throws nothing of its own. What its standard facilities throw (std::bad_alloc, say)
 * leaves the operation, and the object can be used or destroyed afterwards; leaving the
 * notification handler, it ends the process.
 */
class VELTRASDK_API VeltraSDK {
public:
    /**
     * @brief Shares hidapi between the objects of this process, so that several may be connected.
     *
     * hidapi is then initialised by the first object and shut down with the last one, and one lock
     * covers enumerating, opening, closing and shutting down, never reading or writing: objects may
     * be created, connected, disconnected and destroyed from several threads. Calls on one object
     * still must not overlap. Sharing holds until the process ends.
     *
     * @return whether hidapi is shared; false when an object exists that was created without.
     */
    static bool shareHidapi();

    /**
     * @brief Lists every adapter that is plugged in, connected ones included; sends nothing.
     *
     * hidapi opens every HID device of the machine to read its strings. Unless hidapi is shared, it
     * is not shut down afterwards, and the call must not overlap with those that must not overlap
     * with each other: see Threads above.
     *
     * @return the adapters in hidapi's order.
     */
    static std::vector<VeltraSDK_AdapterInfo> adapters();

    /** @brief The adapter's five identity strings: bytes as it returned them, at most 254 each. */
    struct DeviceInfo {
        std::string usbString1; /**< String index 1. */
        std::string usbString2; /**< String index 2. */
        std::string usbString3; /**< String index 3. */
        std::string usbString4; /**< String index 4. */
        std::string usbString5; /**< String index 5. */
    };

    /**
     * @brief Creates an object that is not connected, and initialises hidapi.
     * @param timeoutMs how long an operation waits for its response, in ms. -1 waits without limit,
     *                  also when the request could not be written; 0 and every other negative value
     *                  do not wait.
     *
     * @warning Without shareHidapi() connect one object at a time: destroying any object shuts
     * hidapi down for the whole process, which hidapi's libusb back end does not survive while
     * another object is connected.
     */
    explicit VeltraSDK(int timeoutMs);

    /**
     * @brief Closes the link and shuts hidapi down, whatever other objects exist; where it is
     * shared, with the last one only.
     *
     * A running handler is waited for, so it must not destroy the object; none runs after the
     * destructor has returned.
     *
     * @warning Without shareHidapi() destroying one object while another one is connected makes
     * hidapi's libusb back end abort the process: connect one object at a time.
     */
    ~VeltraSDK();

    VeltraSDK(const VeltraSDK&) = delete;
    VeltraSDK& operator=(const VeltraSDK&) = delete;

    /**
     * @brief Opens the link to the adapter with a HID device path.
     *
     * On an open link nothing is searched and it stays as it is. An adapter that was unplugged
     * leaves its link open, and operations return #ResultCode_NoResponse, in strict mode
     * #ResultCode_NotConnected: disconnect() before connecting again.
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
     * leaves its link open, and operations return #ResultCode_NoResponse, in strict mode
     * #ResultCode_NotConnected: disconnect() before connecting again. Without write permission on
     * the adapter's device node its serial number cannot be read, and the adapter is not found.
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
     * It takes about 100 ms at most, plus a running handler's time. No handler runs after the
     * return. The handler stays installed and serves the next connection. On a closed link nothing
     * happens.
     */
    void disconnect();

    /**
     * @brief Tells whether the link is connected and no read has failed since, in both modes.
     *
     * After an unplug it becomes false within about 100 ms. It may be called from any thread, the
     * notification handler included.
     *
     * @return whether the adapter can be reached, as far as the link knows.
     */
    [[nodiscard]] bool isConnected() const;

    /**
     * @brief Switches strict mode on or off; off at first.
     *
     * Strict mode is described with the class. Switch while no operation runs, best before
     * connecting. Each call sets the overlap back to 1.
     *
     * @param strict whether strict mode is to be on.
     */
    void setStrict(bool strict);

    /**
     * @brief Sets how many requests may be outstanding at once in strict mode; 1 at first.
     *
     * They are those of several threads. Only operations whose request has at most 512 bytes and
     * whose response fits one report overlap; every other one has the adapter to itself. What is in
     * flight behind a request that fails is carried out. How many requests an adapter queues is its
     * maker's word.
     *
     * @param requests how many, 1 to 4.
     * @return 0, or #ResultCode_InvalidArgument for another number or when strict mode is off.
     */
    uint16_t setOverlap(uint8_t requests);

    /**
     * @brief Counts the responses that strict mode has dropped, since nobody waited for them.
     * @return how many there were so far.
     */
    [[nodiscard]] uint64_t getUnmatchedResponses() const;

    /**
     * @brief Installs the receiver of notifications, which replaces the one before.
     *
     * NotificationQueue is the other way: it keeps them until they are waited for.
     *
     * Install it while not connected: it is replaced without a lock.
     *
     * Every call must return in less than 1 ms at full speed, 0.1 ms at high speed: one report time
     * with about 20 us to spare. One stall may last about 30 report times: 30 ms at full speed, 4
     * ms at high speed. hidapi keeps 32 unread reports beside the one at hand, and then silently
     * drops the oldest, which may be a response.
     *
     * @param handler receives each notification on the polling thread, those of kind
     *                #NotificationKind_Unknown included; empty for none. The object keeps it until
     *                it is replaced or the object is destroyed. The record is valid only during the
     *                call.
     */
    void onNotification(std::function<void(const Notification&)> handler);

    /** @name System */
    /** @{ */

    /**
     * @brief Reads one of the adapter's strings; sends 0x0407.
     * @param[out] text replaced by the string's bytes, at most 254, when the result is 0; left as
     *                  it was on any other result, #ResultCode_UnexpectedResponse included.
     * @param index the string's index, 1 to 5, passed on unchanged.
     * @return the result code, 0 for a response of any status. Also #ResultCode_UnexpectedResponse
     *         when the response answers another request.
     */
    uint16_t getUsbString(std::vector<uint8_t>& text, uint8_t index);

    /**
     * @brief Reads the adapter's five identity strings, one request each; sends 0x0407 five times.
     *
     * It ends with the first string that cannot be read. Each of the five requests has the whole
     * time-out.
     *
     * @param[out] info receives each string as it is read. On a nonzero result the strings up to
     *                  the failing one are set, that one and those behind it are left as they were.
     * @return the result code, 0 for responses of any status. Also #ResultCode_UnexpectedResponse
     *         when a response answers another request.
     */
    uint16_t getDeviceInfo(DeviceInfo& info);

    /**
     * @brief Sends the adapter into its boot mode and closes the link; sends 0x0402.
     *
     * No response is awaited. The link is closed as by disconnect(), and the object can connect
     * again. In strict mode a command that cannot be written leaves it open: the result then is
     * #ResultCode_NoResponse, or #ResultCode_NotConnected when the adapter has gone.
     *
     * @return 0 when the command was handed to the link, whether or not it could be written;
     *         #ResultCode_NotConnected when the link is not connected.
     */
    uint16_t enterBootMode();

    /** @} */

    /**
     * @name I2C
     * The I/O voltage of I2C, SPI, UART and GPIO is one setting: the four functions that set it
     * send the same request.
     */
    /** @{ */

    /**
     * @brief Sets the I/O voltage of I2C, SPI, UART and GPIO; sends 0x0405.
     * @param millivolts the voltage in mV.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code.
     */
    uint16_t i2cSetBusVoltage(uint16_t millivolts, bool flag);

    /**
     * @brief Initialises a controller; sends 0x0901.
     * @param busIndex the I2C controller, 0 or 1.
     * @param clockHz the clock rate in Hz.
     * @param option passed on unchanged; its meaning is the adapter's.
     * @return the result code.
     */
    uint16_t i2cControllerInit(uint8_t busIndex, uint32_t clockHz, uint8_t option);

    /**
     * @brief Changes the parameters of an initialised controller; sends 0x0902.
     * @param busIndex the I2C controller, 0 or 1.
     * @param clockHz the clock rate in Hz.
     * @param option passed on unchanged; its meaning is the adapter's.
     * @return the result code.
     */
    uint16_t i2cSetParameters(uint8_t busIndex, uint32_t clockHz, uint8_t option);

    /**
     * @brief Sets the pull-up resistors of a bus; sends 0x0802.
     * @param busIndex the I2C controller, 0 or 1.
     * @param setting passed on unchanged; its meaning is the adapter's.
     * @return the result code.
     */
    uint16_t i2cSetPullUpResistors(uint8_t busIndex, uint8_t setting);

    /**
     * @brief Finds the targets of a bus; sends 0x0906.
     *
     * The two counts may go to one variable, which then holds the number of 10-bit addresses.
     *
     * @param[out] addresses replaced by the list whenever a response arrived that carries it, and
     *                       left as it was on #ResultCode_ShortResponse: the 7-bit addresses of one
     *                       byte each, unshifted, then the 10-bit ones of two bytes each, as the
     *                       adapter sent them; at most 765 bytes.
     * @param[out] sevenBitCount receives the number of 7-bit addresses; written whenever a response
     *                           arrived. Null is refused.
     * @param[out] tenBitCount receives the number of 10-bit addresses; written whenever a response
     *                         arrived. Null is refused.
     * @param busIndex the I2C controller, 0 or 1; another is refused.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code. Also #ResultCode_ShortResponse, whatever the status, when the
     *         response does not carry the list that its counts announce.
     */
    uint16_t i2cScanBus(std::vector<uint8_t>& addresses, uint8_t* sevenBitCount,
                        uint8_t* tenBitCount, uint8_t busIndex, bool flag);

    /**
     * @brief Writes to a target; sends 0x0904.
     * @param busIndex the I2C controller, 0 or 1.
     * @param targetAddress the target's address, 7 bits, unshifted.
     * @param registerAddress 0 to 4 bytes, most significant first; more are refused.
     * @param data the bytes to write, at most 65535, since the length field holds their number
     *             modulo 65536.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code.
     */
    uint16_t i2cWrite(uint8_t busIndex, uint8_t targetAddress,
                      const std::vector<uint8_t>& registerAddress, const std::vector<uint8_t>& data,
                      bool flag);

    /**
     * @brief Reads from a target; sends 0x0905.
     * @param busIndex the I2C controller, 0 or 1.
     * @param targetAddress the target's address, 7 bits, unshifted.
     * @param registerAddress 0 to 4 bytes, most significant first; more are refused.
     * @param length the number of bytes to read.
     * @param[out] data replaced by exactly @p length bytes whenever a response arrived; those that
     *                  the response does not carry are zero.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code.
     */
    uint16_t i2cRead(uint8_t busIndex, uint8_t targetAddress,
                     const std::vector<uint8_t>& registerAddress, uint16_t length,
                     std::vector<uint8_t>& data, bool flag);

    /** @} */

    /** @name SPI */
    /** @{ */

    /**
     * @brief Sets the I/O voltage of I2C, SPI, UART and GPIO; sends 0x0405.
     * @param millivolts the voltage in mV.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code.
     */
    uint16_t spiSetBusVoltage(uint16_t millivolts, bool flag);

    /**
     * @brief Initialises the controller; sends 0x0D01.
     * @param bitOrder the bit order, passed on unchanged.
     * @param mode the clock polarity and phase, passed on unchanged.
     * @param dataWidth the word width, passed on unchanged.
     * @param chipSelect the chip-select line that transfers assert, passed on unchanged.
     * @param polarity the level that it is asserted with, passed on unchanged.
     * @param clockHz the clock rate in Hz.
     * @return the result code.
     */
    uint16_t spiControllerInit(SpiBitOrder bitOrder, SpiMode mode, SpiDataWidth dataWidth,
                               SpiChipSelect chipSelect, SpiChipSelectPolarity polarity,
                               uint32_t clockHz);

    /**
     * @brief Changes the parameters of the initialised controller; sends 0x0D02.
     * @param bitOrder the bit order, passed on unchanged.
     * @param mode the clock polarity and phase, passed on unchanged.
     * @param dataWidth the word width, passed on unchanged.
     * @param chipSelect the chip-select line that transfers assert, passed on unchanged.
     * @param polarity the level that it is asserted with, passed on unchanged.
     * @param clockHz the clock rate in Hz.
     * @return the result code.
     */
    uint16_t spiSetParameters(SpiBitOrder bitOrder, SpiMode mode, SpiDataWidth dataWidth,
                              SpiChipSelect chipSelect, SpiChipSelectPolarity polarity,
                              uint32_t clockHz);

    /**
     * @brief Runs a full-duplex transfer; sends 0x0D04.
     * @param send the bytes to send, not changed; at most 65535, since the length field holds their
     *             number modulo 65536.
     * @param[out] received replaced by as many bytes as the response counts, which may be more or
     *                      fewer than @p length and are at most 65535, whenever a response arrived.
     * @param length the requested length in bytes.
     * @return the result code.
     */
    uint16_t spiTransfer(std::vector<uint8_t>& send, std::vector<uint8_t>& received,
                         uint16_t length);

    /** @} */

    /**
     * @name UART
     * Received bytes arrive as notifications of kind #NotificationKind_UartRx.
     */
    /** @{ */

    /**
     * @brief Sets the I/O voltage of I2C, SPI, UART and GPIO; sends 0x0405.
     * @param millivolts the voltage in mV.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code.
     */
    uint16_t uartSetBusVoltage(uint16_t millivolts, bool flag);

    /**
     * @brief Initialises the UART; sends 0x1002.
     * @param baudRate the line rate, passed on unchanged.
     * @param handshake the hardware flow control, passed on unchanged.
     * @param parity the parity bit, passed on unchanged.
     * @param dataSize the number of data bits, passed on unchanged.
     * @param stopBit the number of stop bits, passed on unchanged.
     * @return the result code.
     */
    uint16_t uartInit(UartBaudRate baudRate, UartHwHandshake handshake, UartParity parity,
                      UartDataSize dataSize, UartStopBit stopBit);

    /**
     * @brief Changes the parameters of the initialised UART; sends 0x1003.
     * @param baudRate the line rate, passed on unchanged.
     * @param handshake the hardware flow control, passed on unchanged.
     * @param parity the parity bit, passed on unchanged.
     * @param dataSize the number of data bits, passed on unchanged.
     * @param stopBit the number of stop bits, passed on unchanged.
     * @return the result code.
     */
    uint16_t uartSetParameters(UartBaudRate baudRate, UartHwHandshake handshake, UartParity parity,
                               UartDataSize dataSize, UartStopBit stopBit);

    /**
     * @brief Sends bytes over the UART; sends 0x1005.
     * @param message the bytes to send, at most 65535, since the length field holds their number
     *                modulo 65536.
     * @return the result code.
     */
    uint16_t uartSendMessage(const std::vector<uint8_t>& message);

    /** @} */

    /**
     * @name GPIO
     * Interrupts arrive as notifications of kind #NotificationKind_Gpio.
     */
    /** @{ */

    /**
     * @brief Sets the I/O voltage of I2C, SPI, UART and GPIO; sends 0x0405.
     * @param millivolts the voltage in mV.
     * @param flag passed on unchanged; its meaning is the adapter's.
     * @return the result code.
     */
    uint16_t gpioSetVoltage(uint16_t millivolts, bool flag);

    /**
     * @brief Configures a pin; sends 0x1401.
     * @param pin the pin, passed on unchanged.
     * @param functionality what the pin is used for, passed on unchanged.
     * @param level the initial level of an output, passed on unchanged; not sent for another
     *              functionality than #GpioFunctionality_Output.
     * @return the result code.
     */
    uint16_t gpioConfigurePin(GpioPinNumber pin, GpioFunctionality functionality,
                              GpioLogicLevel level);

    /**
     * @brief Drives a pin; sends 0x1402.
     * @param pin the pin, passed on unchanged.
     * @param level the level, passed on unchanged.
     * @return the result code.
     */
    uint16_t gpioDigitalWrite(GpioPinNumber pin, GpioLogicLevel level);

    /**
     * @brief Reads a pin; sends 0x1403.
     * @param pin the pin, passed on unchanged.
     * @param[out] level receives the pin's level, also a value that is no enumerator; written
     *                   whenever a response arrived.
     * @return the result code.
     */
    uint16_t gpioDigitalRead(GpioPinNumber pin, GpioLogicLevel& level);

    /**
     * @brief Arms a pin's interrupt; sends 0x1404.
     * @param pin the pin, passed on unchanged.
     * @param trigger what makes the pin send an interrupt, passed on unchanged.
     * @return the result code.
     */
    uint16_t gpioConfigureInterrupt(GpioPinNumber pin, GpioTriggerType trigger);

    /**
     * @brief Disarms a pin's interrupt; sends 0x1405.
     * @param pin the pin, passed on unchanged.
     * @return the result code.
     */
    uint16_t gpioDisableInterrupt(GpioPinNumber pin);

    /** @} */

    /**
     * @name I3C bus
     * Targets that join the bus arrive as notifications of kind #NotificationKind_I3cHotJoin,
     * in-band interrupts as notifications of kind #NotificationKind_I3cIbi.
     */
    /** @{ */

    /**
     * @brief Sets the I3C bus voltage; sends 0x0404.
     * @param millivolts the voltage in mV.
     * @return the result code.
     */
    uint16_t i3cSetBusVoltage(uint16_t millivolts);

    /**
     * @brief Initialises the controller; sends 0x1901.
     * @param pushPullRate the SCL rate of push-pull phases, an #I3cPushPullRate; its low byte is
     *                     passed on unchanged.
     * @param openDrainRate the SCL rate of open-drain phases, an #I3cOpenDrainTransferRate; its low
     *                      byte is passed on unchanged.
     * @param i2cRate the SCL rate of legacy I2C transfers, an #I2cTransferRate; its low byte is
     *                passed on unchanged.
     * @param driveStrength the drive strength of the pins, an #I3cDriveStrength; its low byte is
     *                      passed on unchanged.
     * @return the result code.
     */
    uint16_t i3cControllerInit(I3cPushPullRate pushPullRate, I3cOpenDrainTransferRate openDrainRate,
                               I2cTransferRate i2cRate, I3cDriveStrength driveStrength);

    /**
     * @brief Changes the parameters of the initialised controller; sends 0x1902.
     * @param pushPullRate the SCL rate of push-pull phases, an #I3cPushPullRate; its low byte is
     *                     passed on unchanged.
     * @param openDrainRate the SCL rate of open-drain phases, an #I3cOpenDrainTransferRate; its low
     *                      byte is passed on unchanged.
     * @param i2cRate the SCL rate of legacy I2C transfers, an #I2cTransferRate; its low byte is
     *                passed on unchanged.
     * @param driveStrength the drive strength of the pins, an #I3cDriveStrength; its low byte is
     *                      passed on unchanged.
     * @return the result code.
     */
    uint16_t i3cSetParameters(I3cPushPullRate pushPullRate, I3cOpenDrainTransferRate openDrainRate,
                              I2cTransferRate i2cRate, I3cDriveStrength driveStrength);

    /**
     * @brief Resets the bus; sends 0x1905.
     * @return the result code.
     */
    uint16_t i3cResetBus();

    /**
     * @brief Initialises the bus with the targets that it is to hold; sends 0x1904.
     * @param targets the records, sent as they are, at most 255; their number is sent modulo 256.
     * @return the result code.
     */
    uint16_t i3cInitBus(std::vector<I3cTargetInfo> targets);

    /**
     * @brief Reads the controller's device table; sends 0x1906.
     * @param[out] table replaced by as many records as the response counts, at most 255, whenever a
     *                   response arrived.
     * @return the result code.
     */
    uint16_t i3cGetDeviceTable(std::vector<I3cTargetInfo>& table);

    /**
     * @brief Changes how the controller treats one target; sends 0x1907.
     * @param address the target's dynamic address or the legacy I2C device's static one, 7 bits,
     *                unshifted.
     * @param configuration how the controller treats the target, passed on unchanged.
     * @return the result code.
     */
    uint16_t i3cSetTargetDeviceConfiguration(uint8_t address, I3cTargetConfiguration configuration);

    /** @} */

    /** @name I3C private transfers and bus patterns */
    /** @{ */

    /**
     * @brief Writes to a target in SDR mode; sends 0x1908.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param subAddress 0 to 4 bytes, sent in the order given; more are refused.
     * @param data the bytes to write, at most 65535, since the length field holds their number
     *             modulo 65536.
     * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
     * @return the result code.
     */
    uint16_t i3cSdrWrite(uint8_t address, const std::vector<uint8_t>& subAddress,
                         const std::vector<uint8_t>& data, I3cTransferFlags flags);

    /**
     * @brief Reads from a target in SDR mode; sends 0x1908.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param subAddress 0 to 4 bytes, sent in the order given; more are refused.
     * @param length the number of bytes to read.
     * @param[out] data replaced by as many bytes as the response counts, which may be more or fewer
     *                  than @p length and are at most 65535, whenever a response arrived.
     * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
     * @return the result code.
     */
    uint16_t i3cSdrRead(uint8_t address, const std::vector<uint8_t>& subAddress, uint16_t length,
                        std::vector<uint8_t>& data, I3cTransferFlags flags);

    /**
     * @brief Writes to a target in HDR-DDR mode; sends 0x1908.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param hdrCommand the HDR command code, passed on unchanged.
     * @param data the bytes to write, at most 65535, since the length field holds their number
     *             modulo 65536.
     * @return the result code.
     */
    uint16_t i3cHdrDdrWrite(uint8_t address, uint8_t hdrCommand, const std::vector<uint8_t>& data);

    /**
     * @brief Reads from a target in HDR-DDR mode; sends 0x1908.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param hdrCommand the HDR command code, passed on unchanged.
     * @param length the number of bytes to read.
     * @param[out] data replaced by as many bytes as the response counts, which may be more or fewer
     *                  than @p length and are at most 65535, whenever a response arrived.
     * @return the result code.
     */
    uint16_t i3cHdrDdrRead(uint8_t address, uint8_t hdrCommand, uint16_t length,
                           std::vector<uint8_t>& data);

    /**
     * @brief Writes to a legacy I2C device on the I3C bus; sends 0x1908.
     * @param address the device's static address, 7 bits, unshifted.
     * @param subAddress 0 to 4 bytes, sent in the order given; more are refused.
     * @param data the bytes to write, at most 65535, since the length field holds their number
     *             modulo 65536.
     * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
     * @return the result code.
     */
    uint16_t i3cLegacyI2cWrite(uint8_t address, const std::vector<uint8_t>& subAddress,
                               const std::vector<uint8_t>& data, I3cTransferFlags flags);

    /**
     * @brief Reads from a legacy I2C device on the I3C bus; sends 0x1908.
     * @param address the device's static address, 7 bits, unshifted.
     * @param subAddress 0 to 4 bytes, sent in the order given; more are refused.
     * @param length the number of bytes to read.
     * @param[out] data replaced by as many bytes as the response counts, which may be more or fewer
     *                  than @p length and are at most 65535, whenever a response arrived.
     * @param flags the options, values of #I3cTransferFlags; the low five bits are sent.
     * @return the result code.
     */
    uint16_t i3cLegacyI2cRead(uint8_t address, const std::vector<uint8_t>& subAddress,
                              uint16_t length, std::vector<uint8_t>& data, I3cTransferFlags flags);

    /**
     * @brief Drives the target reset pattern; sends 0x190A: 0.
     *
     * Each target carries out the reset action that RSTACT has armed.
     *
     * @return the result code.
     */
    uint16_t i3cTargetResetPattern();

    /**
     * @brief Drives the HDR exit pattern; sends 0x190A: 1.
     * @return the result code.
     */
    uint16_t i3cHdrExitPattern();

    /** @} */

    /** @name I3C Common Command Codes: queries */
    /** @{ */

    /**
     * @brief Reads the provisioned identifier of one target: GETPID, a direct read; sends 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param[out] pid replaced by as many bytes as the response counts, at most 255, most
     *                 significant first, whenever a response arrived; a conforming target returns
     *                 6.
     * @return the result code.
     */
    uint16_t i3cCccGETPID(uint8_t address, std::vector<uint8_t>& pid);

    /**
     * @brief Reads the bus characteristics register of one target: GETBCR, a direct read; sends
     * 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param[out] bcr receives the register, whatever number of bytes the response counts; written
     *                 whenever a response arrived.
     * @return the result code.
     */
    uint16_t i3cCccGETBCR(uint8_t address, uint8_t& bcr);

    /**
     * @brief Reads the device characteristics register of one target: GETDCR, a direct read; sends
     * 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param[out] dcr receives the register, whatever number of bytes the response counts; written
     *                 whenever a response arrived.
     * @return the result code.
     */
    uint16_t i3cCccGETDCR(uint8_t address, uint8_t& dcr);

    /**
     * @brief Reads the maximum write length of one target: GETMWL, a direct read; sends 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param[out] mwl receives the maximum write length in bytes, whatever number of bytes the
     *                 response counts; written whenever a response arrived.
     * @return the result code.
     */
    uint16_t i3cCccGETMWL(uint8_t address, uint16_t& mwl);

    /**
     * @brief Reads the maximum read length of one target: GETMRL, a direct read; sends 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param[out] mrl receives the maximum read length in bytes, whatever number of bytes the
     *                 response counts; written whenever a response arrived.
     * @param[out] ibiPayloadSize receives the maximum size of an in-band interrupt's payload in
     *                            bytes when the response counts exactly 3 bytes; emptied when it
     *                            counts another number.
     * @return the result code.
     */
    uint16_t i3cCccGETMRL(uint8_t address, uint16_t& mrl, std::optional<uint8_t>& ibiPayloadSize);

    /**
     * @brief Reads the optional feature capabilities of one target: GETCAPS, a direct read; sends
     * 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param[out] capabilities replaced by as many bytes as the response counts, at most 255, in
     *                          bus order, whenever a response arrived; 4 are asked for.
     * @param definingByte the defining byte, passed on unchanged; empty sends the form without one,
     *                     which differs from a defining byte of 0.
     * @return the result code.
     */
    uint16_t i3cCccGETCAPS(uint8_t address, std::vector<uint8_t>& capabilities,
                           std::optional<uint8_t> definingByte);

    /**
     * @brief Reads the status of one target: GETSTATUS, a direct read; sends 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param[out] status replaced by as many bytes as the response counts, at most 255, in bus
     *                    order, whenever a response arrived; 2 are asked for.
     * @param definingByte the defining byte, passed on unchanged; empty sends the form without one,
     *                     which differs from a defining byte of 0.
     * @return the result code.
     */
    uint16_t i3cCccGETSTATUS(uint8_t address, std::vector<uint8_t>& status,
                             std::optional<uint8_t> definingByte);

    /** @} */

    /** @name I3C Common Command Codes: settings and broadcasts */
    /** @{ */

    /**
     * @brief Sets the maximum write length of one target: SETMWL, a direct write; sends 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param mwl the maximum write length in bytes.
     * @return the result code.
     */
    uint16_t i3cCccSETMWLDirect(uint8_t address, uint16_t mwl);

    /**
     * @brief Sets the maximum write length of all targets: SETMWL, a broadcast; sends 0x1909.
     * @param mwl the maximum write length in bytes.
     * @return the result code.
     */
    uint16_t i3cCccSETMWLBroadcast(uint16_t mwl);

    /**
     * @brief Sets the maximum read length of one target: SETMRL, a direct write; sends 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param mrl the maximum read length in bytes.
     * @param ibiPayloadSize the maximum size of an in-band interrupt's payload in bytes; empty
     *                       sends none.
     * @return the result code.
     */
    uint16_t i3cCccSETMRLDirect(uint8_t address, uint16_t mrl,
                                std::optional<uint8_t> ibiPayloadSize);

    /**
     * @brief Sets the maximum read length of all targets: SETMRL, a broadcast; sends 0x1909.
     * @param mrl the maximum read length in bytes.
     * @param ibiPayloadSize the maximum size of an in-band interrupt's payload in bytes; empty
     *                       sends none.
     * @return the result code.
     */
    uint16_t i3cCccSETMRLBroadcast(uint16_t mrl, std::optional<uint8_t> ibiPayloadSize);

    /**
     * @brief Gives one target another dynamic address: SETNEWDA, a direct write; sends 0x1909.
     * @param currentAddress the target's present dynamic address, 7 bits, unshifted.
     * @param newAddress the target's new dynamic address, 7 bits, unshifted; bit 7 is dropped.
     * @return the result code.
     */
    uint16_t i3cCccSETNEWDA(uint8_t currentAddress, uint8_t newAddress);

    /**
     * @brief Gives the target with a given static address a dynamic one: SETDASA, a direct write;
     * sends 0x1909.
     * @param staticAddress the target's static address, 7 bits, unshifted.
     * @param dynamicAddress the target's new dynamic address, 7 bits, unshifted; bit 7 is dropped.
     * @return the result code.
     */
    uint16_t i3cCccSETDASA(uint8_t staticAddress, uint8_t dynamicAddress);

    /**
     * @brief Makes targets take their static address as dynamic address: SETAASA, a broadcast;
     * sends 0x1909.
     * @param staticAddresses the targets' static addresses, 7 bits, unshifted; may be empty. At
     *                        most 255, since the length field holds their number modulo 256. Passed
     *                        on unchanged; their meaning is the adapter's, since the code carries
     *                        none on the bus.
     * @return the result code.
     */
    uint16_t i3cCccSETAASA(const std::vector<uint8_t>& staticAddresses);

    /**
     * @brief Enables events of one target: ENEC, a direct write; sends 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param events the events whose bits are set: 0x01 in-band interrupts, 0x02 requests of the
     *               controller role, 0x08 hot-join; passed on unchanged.
     * @return the result code.
     */
    uint16_t i3cCccENECDirect(uint8_t address, uint8_t events);

    /**
     * @brief Enables events of all targets: ENEC, a broadcast; sends 0x1909.
     * @param events the events whose bits are set: 0x01 in-band interrupts, 0x02 requests of the
     *               controller role, 0x08 hot-join; passed on unchanged.
     * @return the result code.
     */
    uint16_t i3cCccENECBroadcast(uint8_t events);

    /**
     * @brief Disables events of one target: DISEC, a direct write; sends 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param events the events whose bits are set: 0x01 in-band interrupts, 0x02 requests of the
     *               controller role, 0x08 hot-join; passed on unchanged.
     * @return the result code.
     */
    uint16_t i3cCccDISECDirect(uint8_t address, uint8_t events);

    /**
     * @brief Disables events of all targets: DISEC, a broadcast; sends 0x1909.
     * @param events the events whose bits are set: 0x01 in-band interrupts, 0x02 requests of the
     *               controller role, 0x08 hot-join; passed on unchanged.
     * @return the result code.
     */
    uint16_t i3cCccDISECBroadcast(uint8_t events);

    /**
     * @brief Arms or queries the reset action of one target: RSTACT, a direct write or read; sends
     * 0x1909.
     * @param address the target's dynamic address, 7 bits, unshifted.
     * @param definingByte of a write the reset action, of a read what is asked for; its low byte is
     *                     passed on unchanged.
     * @param direction #I3cTransferDirection_Write arms the action, #I3cTransferDirection_Read asks
     *                  for one byte. Another value is not refused: it is sent and stores nothing.
     * @param[out] reply receives the byte of a read, whatever number of bytes the response counts;
     *                   written whenever a response arrived, left as it was in any other direction.
     *                   May be null.
     * @return the result code.
     */
    uint16_t i3cCccRSTACTDirect(uint8_t address, I3cTargetResetDefByte definingByte,
                                I3cTransferDirection direction, uint8_t* reply);

    /**
     * @brief Arms the reset action of all targets: RSTACT, a broadcast; sends 0x1909.
     * @param definingByte the reset action; its low byte is passed on unchanged.
     * @return the result code.
     */
    uint16_t i3cCccRSTACTBroadcast(I3cTargetResetDefByte definingByte);

    /**
     * @brief Takes the dynamic addresses of all targets away: RSTDAA, a broadcast; sends 0x1909.
     * @return the result code.
     */
    uint16_t i3cCccRSTDAA();

    /**
     * @brief Assigns dynamic addresses to all targets without one: ENTDAA, a broadcast; sends
     * 0x1909.
     * @return the result code.
     */
    uint16_t i3cCccENTDAA();

    /**
     * @brief Sends any Common Command Code; sends 0x1909.
     *
     * The adapter may know more codes than those that have an operation of their own, and more
     * modes. A value outside its enumeration spills into other fields of the request.
     *
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
     * @param[out] reply replaced by as many bytes as the response counts, at most 255, whenever a
     *                   response arrived.
     * @return the result code. Also #ResultCode_InvalidArgument when a read has data.
     */
    uint16_t i3cCccTransfer(uint8_t address, I3cTransferDirection direction, I3cTransferMode mode,
                            bool optionFlag, I3cCccType type, uint8_t length, CCC code,
                            uint8_t definingByte, const std::vector<uint8_t>& data,
                            std::vector<uint8_t>& reply);

    /** @} */

    /**
     * @name Engine
     * What the operations are built on; a program needs neither.
     */
    /** @{ */

    /**
     * @brief Takes the next transaction identifier, as every request does.
     *
     * The first one of an object is 1; 65535 is followed by 1. Neither a request that is not sent
     * nor disconnecting gives an identifier back.
     *
     * @return the identifier, 1 to 65535.
     */
    uint16_t generateTransactionId();

    /**
     * @brief Routes a frame from the adapter: a notification to its handler, a response to the
     * operation that waits.
     *
     * The polling thread calls it with each frame that arrives.
     *
     * @param frame the whole frame, from the transaction identifier on: 0 marks a notification,
     *              which the handler sees in place; any other value a response, which is copied. A
     *              frame of fewer than 6 bytes is dropped.
     */
    void handleResponse(const std::vector<uint8_t>& frame);

    /** @} */

private:
    // It keeps what the engine hands it.
    friend class NotificationQueue;
    class Engine;

    std::unique_ptr<Engine> engine;
    // Never set and used by nothing: the link belongs to the engine's encoder. The member is kept
    // as a fixed part of the class.
    std::unique_ptr<CommunicationManager> communicationManager;
};

#endif
