/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief The target record and the enumerations of the I3C controller.
 */
#ifndef VELTRASDK_I3C_H
#define VELTRASDK_I3C_H

#include <veltrasdk/declarations.h>

/**
 * One target of the I3C bus. The 16 bytes of the record travel exactly as they lie in memory on a
 * little-endian host; the library interprets none of them.
 */
typedef struct I3cTargetInfo {
    /** The target's static address, 7 bits; 0 when it has none. */
    uint8_t staticAddress;
    /** The dynamic address that the controller assigns or has assigned, 7 bits. */
    uint8_t dynamicAddress;
    /** The 48-bit provisioned identifier, in bus order: most significant byte first. */
    uint8_t pid[6];
    /** The bus characteristics register. */
    uint8_t bcr;
    /** The device characteristics register. */
    uint8_t dcr;
    /** The maximum write length in bytes. */
    uint16_t maxWriteLength;
    /** The maximum read length in bytes. */
    uint16_t maxReadLength;
    /** The maximum size in bytes of an in-band interrupt's payload. */
    uint8_t maxIbiPayloadSize;
    /** How the controller treats the target: a value of #I3cTargetConfiguration. */
    uint8_t configuration;
} I3cTargetInfo;

/** How the controller treats one target; travels as one byte. */
VELTRASDK_ENUM(I3cTargetConfiguration, uint8_t){
    /** An I3C target whose in-band interrupts are acknowledged and passed on. */
    I3cTargetConfiguration_AcceptIbi = 0,
    /** An I3C target whose in-band interrupts are refused. */
    I3cTargetConfiguration_RejectIbi = 1,
    /** A legacy I2C device, reached by its static address. */
    I3cTargetConfiguration_LegacyI2c = 2,
};

/** The SCL rate of push-pull (SDR) phases; its low byte travels. */
VELTRASDK_ENUM(I3cPushPullRate, uint32_t){
    I3cPushPullRate_12_5_MHz = 0, /**< 12.5 MHz. */
    I3cPushPullRate_10_MHz = 1,   /**< 10 MHz. */
    I3cPushPullRate_8_MHz = 2,    /**< 8 MHz. */
    I3cPushPullRate_6_MHz = 3,    /**< 6 MHz. */
    I3cPushPullRate_4_MHz = 4,    /**< 4 MHz. */
    I3cPushPullRate_2_MHz = 5,    /**< 2 MHz. */
    I3cPushPullRate_1_MHz = 6,    /**< 1 MHz. */
};

/** The SCL rate of open-drain phases; its low byte travels. */
VELTRASDK_ENUM(I3cOpenDrainTransferRate, uint32_t){
    I3cOpenDrainTransferRate_4_MHz = 0,   /**< 4 MHz. */
    I3cOpenDrainTransferRate_2_5_MHz = 1, /**< 2.5 MHz. */
    I3cOpenDrainTransferRate_1_MHz = 2,   /**< 1 MHz. */
    I3cOpenDrainTransferRate_0_4_MHz = 3, /**< 0.4 MHz. */
};

/** The SCL rate of legacy I2C transfers on the I3C bus; its low byte travels. */
VELTRASDK_ENUM(I2cTransferRate, uint32_t){
    I2cTransferRate_1_MHz = 0,   /**< 1 MHz, Fast-mode Plus. */
    I2cTransferRate_0_4_MHz = 1, /**< 0.4 MHz, Fast-mode. */
    I2cTransferRate_0_1_MHz = 2, /**< 0.1 MHz, Standard-mode. */
};

/** The drive strength of the I3C pins; its low byte travels. */
VELTRASDK_ENUM(I3cDriveStrength, uint32_t){
    I3cDriveStrength_2_mA = 0,  /**< 2 mA. */
    I3cDriveStrength_4_mA = 1,  /**< 4 mA. */
    I3cDriveStrength_8_mA = 2,  /**< 8 mA. */
    I3cDriveStrength_12_mA = 3, /**< 12 mA. */
};

/** Options of SDR and legacy I2C transfers; the low five bits travel. Values may be combined. */
VELTRASDK_ENUM(I3cTransferFlags, uint32_t){
    /** No option: the transfer starts with the broadcast address and ends with a STOP. */
    I3cTransferFlags_None = 0,
    /** The transfer starts with the target's address instead of the broadcast address 0x7E. */
    I3cTransferFlags_SkipBroadcastAddress = 1,
    /** The transfer leaves the bus held: the next one begins with a repeated START. */
    I3cTransferFlags_NoStop = 2,
};

#ifdef __cplusplus
/**
 * @brief Combines options of a transfer.
 * @param left one or more options.
 * @param right one or more options.
 * @return all of them.
 */
constexpr I3cTransferFlags operator|(I3cTransferFlags left, I3cTransferFlags right) {
    return static_cast<I3cTransferFlags>(static_cast<uint32_t>(left) |
                                         static_cast<uint32_t>(right));
}
#endif

/** The direction of a transfer's data phase. */
VELTRASDK_ENUM(I3cTransferDirection, uint32_t){
    I3cTransferDirection_Write = 0, /**< From the controller to the target. */
    I3cTransferDirection_Read = 1,  /**< From the target to the controller. */
};

/** The bus mode of a transfer. */
VELTRASDK_ENUM(I3cTransferMode, uint32_t){
    I3cTransferMode_Sdr = 0,       /**< Single data rate. */
    I3cTransferMode_HdrDdr = 1,    /**< High data rate, double data rate. */
    I3cTransferMode_LegacyI2c = 2, /**< Legacy I2C. */
};

/** Whether a Common Command Code carries a defining byte. */
VELTRASDK_ENUM(I3cCccType, uint32_t){
    I3cCccType_WithoutDefiningByte = 0, /**< No defining byte. */
    I3cCccType_WithDefiningByte = 1,    /**< One defining byte follows the command code. */
};

/** The Common Command Codes that the library sends (MIPI I3C Basic v1.1.1, section 5.1.9.3). */
VELTRASDK_ENUM(CCC, uint32_t){
    CCC_ENECBroadcast = 0x00,   /**< Enable events, all targets. */
    CCC_DISECBroadcast = 0x01,  /**< Disable events, all targets. */
    CCC_RSTDAA = 0x06,          /**< Reset dynamic address assignment. */
    CCC_ENTDAA = 0x07,          /**< Enter dynamic address assignment. */
    CCC_SETMWLBroadcast = 0x09, /**< Set maximum write length, all targets. */
    CCC_SETMRLBroadcast = 0x0A, /**< Set maximum read length, all targets. */
    CCC_SETAASA = 0x29,         /**< Set all addresses to static addresses. */
    CCC_RSTACTBroadcast = 0x2A, /**< Target reset action, all targets. */
    CCC_ENECDirect = 0x80,      /**< Enable events, one target. */
    CCC_DISECDirect = 0x81,     /**< Disable events, one target. */
    CCC_SETDASA = 0x87,         /**< Set dynamic address from static address. */
    CCC_SETNEWDA = 0x88,        /**< Set new dynamic address. */
    CCC_SETMWLDirect = 0x89,    /**< Set maximum write length, one target. */
    CCC_SETMRLDirect = 0x8A,    /**< Set maximum read length, one target. */
    CCC_GETMWL = 0x8B,          /**< Get maximum write length. */
    CCC_GETMRL = 0x8C,          /**< Get maximum read length. */
    CCC_GETPID = 0x8D,          /**< Get provisioned identifier. */
    CCC_GETBCR = 0x8E,          /**< Get bus characteristics register. */
    CCC_GETDCR = 0x8F,          /**< Get device characteristics register. */
    CCC_GETSTATUS = 0x90,       /**< Get device status. */
    CCC_GETCAPS = 0x95,         /**< Get optional feature capabilities. */
    CCC_RSTACTDirect = 0x9A,    /**< Target reset action, one target. */
};

/** The defining bytes of RSTACT (MIPI I3C Basic v1.1.1, section 5.1.9.3.26). */
VELTRASDK_ENUM(I3cTargetResetDefByte, uint32_t){
    /** The target reset pattern resets nothing. */
    I3cTargetResetDefByte_NoReset = 0x00,
    /** The target reset pattern resets the I3C peripheral only. */
    I3cTargetResetDefByte_ResetPeripheral = 0x01,
    /** The target reset pattern resets the whole target. */
    I3cTargetResetDefByte_ResetWholeTarget = 0x02,
    /** The target reset pattern resets the debug network adapter. */
    I3cTargetResetDefByte_ResetDebugNetworkAdapter = 0x03,
    /** Prepares the detection of virtual targets. */
    I3cTargetResetDefByte_VirtualTargetDetect = 0x04,
    /** Read: the time that resetting the peripheral takes. */
    I3cTargetResetDefByte_TimeToResetPeripheral = 0x81,
    /** Read: the time that resetting the whole target takes. */
    I3cTargetResetDefByte_TimeToResetWholeTarget = 0x82,
    /** Read: the time that resetting the debug network adapter takes. */
    I3cTargetResetDefByte_TimeToResetDebugNetworkAdapter = 0x83,
    /** Read: whether the address belongs to a virtual target. */
    I3cTargetResetDefByte_VirtualTargetIndication = 0x84,
};

#endif
