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

class CommunicationManager;
class RequestFrame;

/**
 * @brief Encodes one command per operation and hands it to the link, without waiting.
 *
 * Every encoder takes the transaction identifier first, which the adapter repeats in its response:
 * 1 to 65535, since 0 marks the adapter's notifications. The frame of each request is given by its
 * bytes behind the identifier: the command code (low byte, high byte) and the payload, with 16- and
 * 32-bit values in little-endian order.
 *
 * Every encoder returns
 * - #ResultCode_Success when the request was handed to the link; whether it was written or
 *   answered is not known;
 * - #ResultCode_NotConnected when the link is not connected; nothing was sent;
 * - #ResultCode_InvalidArgument where its description says so; nothing was sent.
 *
 * @par Threads
 * Operations on one object must not overlap. The response callback runs on the object's polling
 * thread, one frame at a time, and must not call connect, disconnect, enterBootMode or the
 * destructor of the same object. Constructing, connecting, disconnecting, entering boot mode and
 * destroying must not overlap between any two objects of the process, since hidapi's own calls are
 * not safe against each other.
 */
class VELTRASDK_API VeltraAsyncSDK {
public:
    /**
     * @brief Creates an object that is not connected, and initialises hidapi.
     *
     * @warning Connect one object at a time: destroying any object shuts hidapi down for the whole
     * process, which hidapi's libusb back end does not survive while another object is connected.
     */
    VeltraAsyncSDK();

    /**
     * @brief Closes the link and shuts hidapi down, whatever other objects exist.
     *
     * No callback runs after the destructor has returned.
     *
     * @warning Destroying one object while another one is connected makes hidapi's libusb back end
     * abort the process: connect one object at a time.
     */
    ~VeltraAsyncSDK();

    VeltraAsyncSDK(const VeltraAsyncSDK&) = delete;
    VeltraAsyncSDK& operator=(const VeltraAsyncSDK&) = delete;

    /**
     * @brief Installs the receiver of frames, which replaces the one before.
     * @param callback receives each whole frame, a response or (transaction identifier 0) a
     *                 notification. It runs on the polling thread; the frame is valid only during
     *                 the call. Frames that arrive before it is installed are dropped.
     *
     * Install it while not connected: it is replaced without a lock.
     */
    void onResponse(std::function<void(const std::vector<uint8_t>&)> callback);

    /**
     * @brief Opens the link.
     * @param path the HID device path, matched exactly; empty selects the first known adapter.
     * @return whether the link is open. On an open link nothing is searched and it stays as it is.
     */
    bool connect(const std::string& path);

    /**
     * @brief Opens the link.
     * @param serialNumber the USB serial number in UTF-8, matched exactly; empty selects the first
     *                     known adapter.
     * @return whether the link is open. On an open link nothing is searched and it stays as it is.
     * @throws std::range_error when a serial number met in the search cannot be converted.
     */
    bool connectWithSerialNumber(const std::string& serialNumber);

    /**
     * @brief Closes the link, within about 100 ms plus the callback's run time.
     */
    void disconnect();

    /** @return whether the last connect call succeeded and the link was not closed since. */
    [[nodiscard]] bool isConnected() const { return connected; }

    /** @name System */
    /** @{ */
    /** @brief Sends 0x0402 and closes the link at once; no response to it is awaited. */
    uint16_t enterBootMode(uint16_t transactionId);
    /** @brief Sends 0x0407: index. */
    uint16_t getUsbString(uint16_t transactionId, uint8_t index);
    /** @} */

    /** @name I/O voltage of I2C, SPI, UART and GPIO */
    /** @{ */
    /** @brief Sends 0x0405: millivolts (16 bits), flag. */
    uint16_t setI2cSpiUartGpioVoltage(uint16_t transactionId, uint16_t millivolts, bool flag);
    /** @brief The same request as setI2cSpiUartGpioVoltage. */
    uint16_t i2cSetBusVoltage(uint16_t transactionId, uint16_t millivolts, bool flag);
    /** @brief The same request as setI2cSpiUartGpioVoltage. */
    uint16_t spiSetBusVoltage(uint16_t transactionId, uint16_t millivolts, bool flag);
    /** @brief The same request as setI2cSpiUartGpioVoltage. */
    uint16_t uartSetBusVoltage(uint16_t transactionId, uint16_t millivolts, bool flag);
    /** @brief The same request as setI2cSpiUartGpioVoltage. */
    uint16_t gpioSetVoltage(uint16_t transactionId, uint16_t millivolts, bool flag);
    /** @} */

    /** @name I2C */
    /** @{ */
    /** @brief Sends 0x0901: bus index, clock in hertz (32 bits), option. */
    uint16_t i2cControllerInit(uint16_t transactionId, uint8_t busIndex, uint32_t clockHz,
                               uint8_t option);
    /** @brief Sends 0x0902, the layout of i2cControllerInit. */
    uint16_t i2cSetParameters(uint16_t transactionId, uint8_t busIndex, uint32_t clockHz,
                              uint8_t option);
    /** @brief Sends 0x0802: bus index, setting. */
    uint16_t i2cSetPullUpResistors(uint16_t transactionId, uint8_t busIndex, uint8_t setting);
    /** @brief Sends 0x0906: bus index, flag. */
    uint16_t i2cScanBus(uint16_t transactionId, uint8_t busIndex, bool flag);
    /**
     * @brief Sends 0x0904: bus index, data length (16 bits), target address, number of register
     * address bytes, register address (32 bits), flag, data.
     * @param registerAddress 0 to 4 bytes, most significant first; more are refused with
     *                        #ResultCode_InvalidArgument.
     * @param data at most 65535 bytes: the length field holds the size modulo 65536.
     */
    uint16_t i2cWrite(uint16_t transactionId, uint8_t busIndex, uint8_t targetAddress,
                      const std::vector<uint8_t>& registerAddress, const std::vector<uint8_t>& data,
                      bool flag);
    /**
     * @brief Sends 0x0905, the layout of i2cWrite without data; the length is the number of bytes
     * to read.
     * @param registerAddress 0 to 4 bytes, most significant first; more are refused with
     *                        #ResultCode_InvalidArgument.
     */
    uint16_t i2cRead(uint16_t transactionId, uint8_t busIndex, uint8_t targetAddress,
                     const std::vector<uint8_t>& registerAddress, uint16_t length, bool flag);
    /** @} */

    /** @name SPI */
    /** @{ */
    /** @brief Sends 0x0D01: the five enumerations in order, clock in hertz (32 bits). */
    uint16_t spiControllerInit(uint16_t transactionId, SpiBitOrder bitOrder, SpiMode mode,
                               SpiDataWidth dataWidth, SpiChipSelect chipSelect,
                               SpiChipSelectPolarity polarity, uint32_t clockHz);
    /** @brief Sends 0x0D02, the layout of spiControllerInit. */
    uint16_t spiSetParameters(uint16_t transactionId, SpiBitOrder bitOrder, SpiMode mode,
                              SpiDataWidth dataWidth, SpiChipSelect chipSelect,
                              SpiChipSelectPolarity polarity, uint32_t clockHz);
    /**
     * @brief Sends 0x0D04: number of bytes to send (16 bits), requested length (16 bits), data.
     * @param send at most 65535 bytes: the count field holds the size modulo 65536. Not changed.
     */
    uint16_t spiTransfer(uint16_t transactionId, std::vector<uint8_t>& send, uint16_t length);
    /** @} */

    /** @name UART */
    /** @{ */
    /** @brief Sends 0x1002: the five enumerations in order. */
    uint16_t uartInit(uint16_t transactionId, UartBaudRate baudRate, UartHwHandshake handshake,
                      UartParity parity, UartDataSize dataSize, UartStopBit stopBit);
    /** @brief Sends 0x1003, the layout of uartInit. */
    uint16_t uartSetParameters(uint16_t transactionId, UartBaudRate baudRate,
                               UartHwHandshake handshake, UartParity parity, UartDataSize dataSize,
                               UartStopBit stopBit);
    /**
     * @brief Sends 0x1005: number of bytes (16 bits), data.
     * @param message at most 65535 bytes: the count field holds the size modulo 65536.
     */
    uint16_t uartSendMessage(uint16_t transactionId, const std::vector<uint8_t>& message);
    /** @} */

    /** @name GPIO */
    /** @{ */
    /** @brief Sends 0x1401: pin, functionality, and the level for #GpioFunctionality_Output only.
     */
    uint16_t gpioConfigurePin(uint16_t transactionId, GpioPinNumber pin,
                              GpioFunctionality functionality, GpioLogicLevel level);
    /** @brief Sends 0x1402: pin, level. */
    uint16_t gpioDigitalWrite(uint16_t transactionId, GpioPinNumber pin, GpioLogicLevel level);
    /** @brief Sends 0x1403: pin. */
    uint16_t gpioDigitalRead(uint16_t transactionId, GpioPinNumber pin);
    /** @brief Sends 0x1404: pin, trigger type. */
    uint16_t gpioConfigureInterrupt(uint16_t transactionId, GpioPinNumber pin,
                                    GpioTriggerType trigger);
    /** @brief Sends 0x1405: pin. */
    uint16_t gpioDisableInterrupt(uint16_t transactionId, GpioPinNumber pin);
    /** @} */

    /** @name I3C bus */
    /** @{ */
    /** @brief Sends 0x0404: millivolts (16 bits). */
    uint16_t i3cSetBusVoltage(uint16_t transactionId, uint16_t millivolts);
    /** @brief Sends 0x1901: push-pull rate, open-drain rate, I2C rate, drive strength. */
    uint16_t i3cControllerInit(uint16_t transactionId, uint8_t pushPullRate, uint8_t openDrainRate,
                               uint8_t i2cRate, uint8_t driveStrength);
    /** @brief Sends 0x1902, the layout of i3cControllerInit. */
    uint16_t i3cSetParameters(uint16_t transactionId, uint8_t pushPullRate, uint8_t openDrainRate,
                              uint8_t i2cRate, uint8_t driveStrength);
    /**
     * @brief Sends 0x1904: number of records, the records of 16 bytes each.
     * @param targets at most 255 records: the count field and the records sent are the size
     *                modulo 256.
     */
    uint16_t i3cInitBus(uint16_t transactionId, std::vector<I3cTargetInfo> targets);
    /** @brief Sends 0x1905. */
    uint16_t i3cResetBus(uint16_t transactionId);
    /** @brief Sends 0x1906. */
    uint16_t i3cGetDeviceTable(uint16_t transactionId);
    /** @brief Sends 0x1907: target address, configuration. */
    uint16_t i3cSetTargetDeviceConfiguration(uint16_t transactionId, uint8_t address,
                                             I3cTargetConfiguration configuration);
    /** @} */

    /**
     * @name I3C private transfers
     * All six send 0x1908: target address; direction (bit 0), mode (bits 1 and 2) and flags (bits 3
     * to 7); HDR command code; number of sub-address bytes; sub-address (four bytes, zero-padded);
     * number of bytes to write or read (16 bits); the data of a write.
     *
     * More than 4 sub-address bytes are refused with #ResultCode_InvalidArgument. Of the flags the
     * low five bits are sent. A write takes at most 65535 bytes: the length field holds the size
     * modulo 65536.
     */
    /** @{ */
    /** @brief Sends an SDR write. */
    uint16_t i3cSdrWrite(uint16_t transactionId, uint8_t address,
                         const std::vector<uint8_t>& subAddress, const std::vector<uint8_t>& data,
                         I3cTransferFlags flags);
    /** @brief Sends an SDR read of @p length bytes. */
    uint16_t i3cSdrRead(uint16_t transactionId, uint8_t address,
                        const std::vector<uint8_t>& subAddress, uint16_t length,
                        I3cTransferFlags flags);
    /** @brief Sends an HDR-DDR write. */
    uint16_t i3cHdrDdrWrite(uint16_t transactionId, uint8_t address, uint8_t hdrCommand,
                            const std::vector<uint8_t>& data);
    /** @brief Sends an HDR-DDR read of @p length bytes. */
    uint16_t i3cHdrDdrRead(uint16_t transactionId, uint8_t address, uint8_t hdrCommand,
                           uint16_t length);
    /** @brief Sends a legacy I2C write. */
    uint16_t i3cLegacyI2cWrite(uint16_t transactionId, uint8_t address,
                               const std::vector<uint8_t>& subAddress,
                               const std::vector<uint8_t>& data, I3cTransferFlags flags);
    /** @brief Sends a legacy I2C read of @p length bytes. */
    uint16_t i3cLegacyI2cRead(uint16_t transactionId, uint8_t address,
                              const std::vector<uint8_t>& subAddress, uint16_t length,
                              I3cTransferFlags flags);
    /** @brief Sends 0x190A: 0, the target reset pattern. */
    uint16_t i3cTargetResetPattern(uint16_t transactionId);
    /** @brief Sends 0x190A: 1, the HDR exit pattern. */
    uint16_t i3cHdrExitPattern(uint16_t transactionId);
    /** @} */

    /**
     * @brief Sends any Common Command Code, 0x1909: target address; direction (bit 0), mode (bits 1
     * and 2), option flag (bit 3) and type (bits 4 to 7); length; code; defining byte; data.
     * @param address the target's 7-bit address, or 0x7E for a broadcast.
     * @param optionFlag carried to the adapter; the operations of VeltraSDK pass false.
     * @param length the length field, sent as given: for a direct code the bytes of the data phase,
     *               for a broadcast the bytes behind the code, the defining byte counted.
     * @param definingByte sent as given; as 0 when @p type says that there is none.
     * @param data the bytes to write; with a read direction they are refused with
     *             #ResultCode_InvalidArgument.
     */
    uint16_t i3cCccTransfer(uint16_t transactionId, uint8_t address, I3cTransferDirection direction,
                            I3cTransferMode mode, bool optionFlag, I3cCccType type, uint8_t length,
                            CCC code, uint8_t definingByte, const std::vector<uint8_t>& data);

private:
    uint16_t send(const RequestFrame& request);
    [[nodiscard]] uint16_t refuseArgument() const;

    std::unique_ptr<CommunicationManager> communicationManager;
    bool connected = false;
};

#endif
