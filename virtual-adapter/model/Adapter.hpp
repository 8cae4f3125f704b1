// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Board.hpp"
#include "model/Dispatcher.hpp"
#include "model/Outbox.hpp"

#include <string>
#include <vector>

namespace virtual_adapter {

/// A behavioural model of the adapter on a board. It has no input or output of its own, no clock
/// and no thread: the frames it answers are a function of the requests it was given.
class Adapter {
public:
    /// The variant's name and @p serialNumber appear among the adapter's identity strings.
    Adapter(const AdapterVariant& variant, const std::string& serialNumber, Board itsBoard);

    Adapter(const Adapter&) = delete;
    Adapter& operator=(const Adapter&) = delete;

    /// Carries a request out. Returns the response, unless the request has no whole header, and
    /// behind it the notifications that the request gave rise to.
    std::vector<CountedFrame> handle(const Frame& request);

    /// What stands on the buses, for whoever changes it between two requests.
    Board& getBoard() { return board; }
    Dispatcher& getDispatcher() { return dispatcher; }
    /// What has been said meanwhile.
    std::vector<CountedFrame> takeNotifications() { return outbox.take(); }

    [[nodiscard]] bool inBootMode() const { return dispatcher.inBootMode(); }

private:
    Board board;
    Outbox outbox;
    Dispatcher dispatcher;
};

} // namespace virtual_adapter
