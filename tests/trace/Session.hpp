// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/ScriptedHid.hpp"

#include <veltrasdk/i3c.h>

#include <mutex>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace test_support {

/// A result or an output, for a line of a trace.
std::string shown(const Bytes& bytes);
std::string shown(const std::string& bytes);
std::string shown(const std::optional<uint8_t>& value);
std::string shown(const I3cTargetInfo& target);
template <typename Number, typename = std::enable_if_t<!std::is_class_v<Number>>>
std::string shown(Number value) {
    return std::to_string(+value);
}

/// A session with one adapter on the stand-in for hidapi, of which a trace is kept: a line for
/// every call of hidapi with its arguments, every operation's result and outputs, every
/// notification. Reads that find nothing leave no line, and those that fail one after the other
/// leave one, since how often the library reads meanwhile is the scheduler's.
class Session {
public:
    Session(uint16_t productId, size_t reportSize);

    template <typename Result, typename... Outputs>
    void say(const std::string& what, Result result, const Outputs&... outputs) {
        std::string line = what + ": " + shown(result);
        ((line += " " + shown(outputs)), ...);
        append(line);
    }
    void append(const std::string& line);

    /// Whether the adapter answers, to every request in the same way: counts of 5, then letters.
    void answer(bool answers) { isAnswering = answers; }
    /// Lets the library read a message and waits until it has been handled.
    void deliver(const Bytes& message);
    /// From now on every write fails.
    void failWriting() { hid.failWriting(-1); }
    /// From now on every read fails too, and one has.
    void unplug();
    void plugIn();

    [[nodiscard]] const std::vector<std::string>& trace() const { return lines; }

private:
    void record(const std::string& call);
    [[nodiscard]] std::vector<Bytes> reportsOf(const Bytes& message) const;
    std::vector<Bytes> answersTo(const Bytes& report);

    const size_t reportSize;
    ScriptedHid hid;
    bool isAnswering = true;
    Bytes response;
    std::mutex mutex;
    std::vector<std::string> lines;
    bool readsFail = false;
};

/// Notifications that a session delivers: one of a report, one of several on either variant.
const Bytes gpioNotification{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A};
Bytes longNotification();

/// The same session in the class's words and in those of C: connecting, every operation,
/// notifications, refusals, a late response, writes that fail, unplugging, connecting again, boot
/// mode.
void useClass(Session& session);
void useHandle(Session& session);

} // namespace test_support
