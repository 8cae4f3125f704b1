// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Failure.hpp"
#include "Options.hpp"
#include "Output.hpp"
#include "Words.hpp"

#include <veltrasdk/VeltraSDK.hpp>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace veltra {

class Inbox;

/// The link to one adapter, in strict mode, opened when it is first needed, and what has been set
/// up over it. Every request goes through it: it is what knows -v, --dry-run and Ctrl+C.
class Session {
public:
    using Call = std::function<uint16_t(VeltraSDK&)>;

    Session(const Options& given, Output& tells);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// No operation waits longer for its response.
    void limitPatience(int milliseconds) {
        timeoutMs = timeoutMs < 0 ? milliseconds : std::min(timeoutMs, milliseconds);
    }
    /// From now on failures concern this operation, under these options.
    void begin(Operation operation, const Options& forIt);
    /// What of the operation people want to know beside its name, such as "0x22"; and its bus.
    void concern(const std::string& subject, std::optional<int> bus = {});
    /// Whose supply the next requests need, where the operation's name does not tell.
    void concernFamily(const std::string& family) { current.family = family; }
    [[nodiscard]] const Operation& operation() const { return current; }

    /// Sends a request, which `request` puts into words, and returns the result code. `answer` is
    /// where the bytes of the answer then are. In a rehearsal nothing is sent, and it succeeds.
    uint16_t attempt(const std::string& request, const Call& call, const Bytes* answer = nullptr);
    /// The same; any result but success is a Failure.
    void perform(const std::string& request, const Call& call, const Bytes* answer = nullptr);
    /// Takes back what a request has done, after a failure and after Ctrl+C too, as far as it goes.
    void takeBack(const std::string& request, const Call& call);
    /// The same, unless the very same request was the last one of this name.
    void setUp(const std::string& name, const std::string& request, const Call& call);
    /// What was set up under the name may be so no longer.
    void forget(const std::string& name) { settings.erase(name); }

    /// Switches on the supply of I2C, SPI, UART and GPIO if a voltage was given.
    void supplyPins();
    /// Switches on the supply of the I3C bus if a voltage was given.
    void supplyI3c();

    /// Whether requests are shown and not sent.
    [[nodiscard]] bool rehearses() const { return options->dryRun; }
    [[nodiscard]] bool isOpen() const { return link != nullptr; }
    /// The adapter, connected.
    VeltraSDK& adapter();
    /// What the adapter sends of its own accord, from the first call on.
    Inbox& inbox();
    /// It is to be kept from the opening of the link on, which is still to come.
    void keepArrivals() { keepsArrivals = true; }
    [[nodiscard]] Failure failureOf(uint16_t result) const;

    /// UART bytes that came with others and were not asked for yet.
    Bytes surplus;

private:
    void open();
    uint16_t send(const std::string& request, const Call& call, const Bytes* answer);
    uint16_t millivolts();

    const Options* options;
    Output& output;
    Operation current;
    std::unique_ptr<VeltraSDK> link;
    std::unique_ptr<Inbox> arrived;
    bool keepsArrivals = false;
    int timeoutMs;
    std::map<std::string, std::string> settings;
};

} // namespace veltra
