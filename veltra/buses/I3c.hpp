// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Session.hpp"
#include "i3c/Ccc.hpp"

#include <veltrasdk/i3c.h>

#include <string>
#include <vector>

namespace veltra {

/// The rates and the strength of the I3C pins, as they were typed.
struct I3cSettings {
    std::string pushPull = "12.5M";
    std::string openDrain = "4M";
    std::string i2c = "400k";
    std::string drive = "8mA";
};

/// The I3C bus; each member sends one request.
class I3c {
public:
    explicit I3c(Session& over) : session(over) { session.supplyI3c(); }

    void initialise(const I3cSettings& settings, const std::vector<I3cTargetInfo>& targets);
    void setSpeed(const I3cSettings& settings);
    void reset();
    std::vector<I3cTargetInfo> table();
    /// 0x09, pid:0123456789ab or static:0x48 as a dynamic address, by the device table.
    uint8_t resolve(const std::string& text);

    void acceptInterrupts(uint8_t address, bool accept);
    void drivePattern(const std::string& name);
    Bytes ccc(const CccRequest& request, uint8_t address);
    /// Empty when the target does not know the code.
    std::optional<Bytes> ask(const std::string& name, uint8_t address);

    enum class Way { Sdr, LegacyI2c };
    Bytes read(Way way, uint8_t address, const Bytes& registerBytes, uint16_t count,
               I3cTransferFlags flags);
    void write(Way way, uint8_t address, const Bytes& registerBytes, const Bytes& data,
               I3cTransferFlags flags);
    Bytes hdrRead(uint8_t address, uint8_t code, uint16_t count);
    void hdrWrite(uint8_t address, uint8_t code, const Bytes& data);

private:
    uint16_t attemptCcc(const CccRequest& request, uint8_t address, Bytes& reply);

    Session& session;
};

} // namespace veltra
