// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "protocol/CommandCode.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace virtual_adapter {

/// What can be made to go wrong between the adapter, its host and what stands on its buses. The
/// request that a fault strikes at is the one of its place.
enum class FaultKind {
    /// The response comes late.
    LateResponse,
    /// The response never comes.
    LostResponse,
    /// The response answers another request.
    WrongIdentifier,
    /// The response ends inside its header.
    ShortFrame,
    /// The adapter is pulled out when the request comes.
    Unplug,
    /// The adapter takes no report from the request on.
    Stall,
    /// From the request on, counts announce more than the frames carry.
    OverLongCount,
    /// Notifications flood the host around the response.
    NotificationStorm,
    /// The next notification, of the request or later, never comes.
    LostNotification,
    /// No I2C or I3C target acknowledges its address.
    AddressNack,
    /// No I2C target acknowledges the first byte written to it.
    DataNack,
    /// A bit of the last byte that was read from a bus is the other way round.
    FlippedBit,
    /// A line of the I2C buses stays low until their controllers are initialised again.
    StuckBus,
    /// The I2C memories do not let themselves be written from the request on.
    WriteProtected,
    /// The host may list the adapter but not open it.
    NoPermission,
    /// The host keeps only so many reports that nobody has read.
    LostReports,
};

/// How long a fault lasts once it has struck.
enum class FaultSpan {
    Once,
    ForGood,
    /// One of the host's, which the adapter itself cannot produce: it has no place.
    FromTheStart,
};

struct FaultName {
    const char* name;
    FaultKind kind;
    FaultSpan span;
};

const std::vector<FaultName>& faultNames();

/// A real host has faults of its own: only one that is played has those of the table.
enum class FaultsOf { Adapter, AdapterAndHost };

/// The names as people read them: with commas.
std::string faultNameList(FaultsOf whom = FaultsOf::AdapterAndHost);

/// Where a fault strikes.
struct FaultPlace {
    /// Nothing for requests of any command.
    std::optional<CommandCode> command;
    /// Of any command: which request since the adapter was switched on. Of one command: which of
    /// its requests from when the fault was asked for.
    size_t request = 3;
};

struct Fault {
    FaultKind kind;
    FaultPlace place;
};

FaultSpan spanOf(FaultKind kind);

/// Reads `NAME[@N | @COMMAND | @COMMAND:N]`. Throws std::invalid_argument, whose text says what is
/// allowed.
Fault parseFault(const std::string& text);

/// What `parseFault` reads.
std::string textOf(const Fault& fault);

} // namespace virtual_adapter
