// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Setting.hpp"
#include "model/i3c/I3cTarget.hpp"

#include <functional>

namespace virtual_adapter {

/// A microcontroller beside the host: it could be the bus's controller, and it switches the
/// supply of the socket that holds a module.
class I3cCompanion : public I3cTarget {
public:
    static const I3cCharacteristics itsKind;
    /// The one that it has besides those of every target.
    static std::vector<Setting> settings();

    /// @p switchModule is told whenever the supply is written.
    explicit I3cCompanion(std::function<void(bool supplied)> switchModule,
                          const I3cCharacteristics& characteristics = itsKind);

    void resetWholeTarget() override;

private:
    [[nodiscard]] uint8_t readRegister(size_t index) const override;
    void writeRegister(size_t index, uint8_t value) override;
    [[nodiscard]] std::optional<Bytes> specialStatus(uint8_t definingByte) const override;
    [[nodiscard]] std::optional<Bytes> specialCapabilities(uint8_t definingByte) const override;

    std::function<void(bool)> switchSupply;
};

} // namespace virtual_adapter
