// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Board.hpp"
#include "board/PartCatalogue.hpp"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace virtual_adapter {

/// Where a part can stand.
enum class Place { I2c, I2cTenBit, Spi, Uart, I3c, I3cLegacy };

/// What says where at such a place: a bus, an address, a supply.
const std::vector<Setting>& placeSettings(Place place);

/// The parts that can stand there.
PartBus partBusOf(Place place);

/// A part at its place.
struct Placement {
    /// With the defaults of all settings that are not given. @p part must be in the catalogue, the
    /// settings must be allowed.
    Placement(Place itsPlace, const std::string& part, const SettingValues& itsWhere,
              const SettingValues& given = {});
    Placement(Place itsPlace, const PartKind& itsKind, const SettingValues& itsWhere,
              const SettingValues& given);

    [[nodiscard]] unsigned number(const char* setting) const {
        return static_cast<unsigned>(where.get<uint64_t>(setting));
    }
    [[nodiscard]] bool operator==(const Placement& other) const;

    Place place;
    const PartKind* kind;
    SettingValues where;
    SettingValues settings;
    /// By the name of the setting whose bytes are those of a file: its path.
    std::map<std::string, std::string> files;
    /// The one of the board's file, in which programs start.
    std::string directory;
    /// Of the board's file; 0 for a part that stands in none.
    size_t line = 0;
};

/// What the world does to the board before a request, counted from 1.
struct TimedStimulus {
    uint64_t request;
    std::string text;
    size_t line;
};

/// What a board is made of: a value, to be checked, compared and built as often as one likes.
struct BoardDescription {
    std::vector<Placement> parts;
    /// Each joins some pins.
    std::vector<Numbers> wires;
    /// By request; those before one request in the order in which they were told.
    std::vector<TimedStimulus> stimuli;
};

/// Why @p next cannot stand beside the parts of @p board; empty when it can. The first word is the
/// name of a setting.
std::string complaintAbout(const BoardDescription& board, const Placement& next);

/// Why that part of a complete board cannot stay; empty when it can.
std::string complaintAboutWhole(const BoardDescription& board, const Placement& part);

/// What only the world outside can give to parts.
class Outside {
public:
    Outside() = default;
    Outside(const Outside&) = delete;
    Outside& operator=(const Outside&) = delete;
    virtual ~Outside() = default;

    virtual std::unique_ptr<I2cTarget> i2cProgram(const Placement& part) = 0;
    virtual std::unique_ptr<SpiTarget> spiProgram(const Placement& part) = 0;
    /// Keeps what a part has in its image.
    virtual SpiFlash::Keeper keeper(const Placement& part) = 0;
};

/// The board, fresh. Every part must be without complaint; @p outside may be null where no part is
/// a program or is written back.
Board buildBoard(const BoardDescription& description, Outside* outside = nullptr);

} // namespace virtual_adapter
