// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Setting.hpp"
#include "model/spi/SpiTarget.hpp"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace virtual_adapter {

/// A NOR flash: bytes are programmed in pages of 256, which clears bits only, and erased in
/// sectors of 4 KiB, blocks of 64 KiB or as a whole. It tells what it is by JEDEC's identification
/// and by its Serial Flash Discoverable Parameters (JESD216). A command is carried out when the
/// chip select is released.
class SpiFlash : public SpiTarget {
public:
    /// How often the flash is found busy after a program or an erase. The model has no clock: each
    /// status byte read and each command ignored stands for a part of the busy time.
    static constexpr unsigned pollsUntilReady = 2;

    static constexpr size_t minSize = size_t{64} * 1024;
    static constexpr size_t maxSize = size_t{16} * 1024 * 1024;

    /// Is told from which address on the memory has changed, and what it holds there now.
    using Keeper = std::function<void(size_t address, const Bytes& bytes)>;

    static std::vector<Setting> settings();
    /// What is wrong with settings that are each allowed by itself; empty when nothing is. The
    /// first word is the name of the setting.
    static std::string complaintAbout(const SettingValues& values);

    /// The flash holds @p contents, which must fit, from address 0 on and is erased behind them.
    /// @p size is a power of two. An empty @p identification is the one that tells the size.
    explicit SpiFlash(size_t size, Bytes contents = {}, const Bytes& identification = {});

    void keepWith(Keeper itsKeeper) { keeper = std::move(itsKeeper); }

    /// Modes 0 and 3, chip select active low.
    [[nodiscard]] bool understands(SpiMode mode, SpiChipSelectPolarity polarity) const override;
    Bytes transfer(const Bytes& sent) override;

private:
    void command(const Bytes& sent, Bytes& driven);
    void write(const Bytes& sent);
    uint8_t readStatus();
    void read(const Bytes& sent, size_t headSize, Bytes& driven) const;
    void pageProgram(const Bytes& sent);
    void erase(size_t address, size_t size);
    void changed(size_t address, size_t size);
    void poll();
    /// Address bits above the memory's size are ignored.
    [[nodiscard]] size_t addressIn(const Bytes& sent) const;

    Bytes memory;
    const Bytes jedecId;
    const Bytes discoverableParameters;
    Keeper keeper;
    bool writeEnabled = false;
    unsigned pollsLeft = 0;
};

} // namespace virtual_adapter
