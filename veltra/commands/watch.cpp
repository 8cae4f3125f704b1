// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Output.hpp"
#include "buses/Gpio.hpp"
#include "buses/I3c.hpp"
#include "commands/commands.hpp"
#include "commands/uart_options.hpp"
#include "watch/Event.hpp"
#include "watch/Plan.hpp"

#include <ctime>
#include <memory>

namespace veltra {

namespace {

void tellLevel(Context& context, uint8_t pin) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const std::string time = secondsOf(static_cast<uint64_t>(now.tv_sec) * 1'000'000'000U +
                                       static_cast<uint64_t>(now.tv_nsec));
    const int level = Gpio(context.session).read(pin);
    context.output.result(
        {{"event", "level"}, {"time", std::stod(time)}, {"pin", pin}, {"level", level}},
        time + " level " + std::to_string(pin) + "=" + std::to_string(level));
}

/// Events until there were enough, or none for too long.
void follow(const Plan& plan, Context& context) {
    for (uint64_t seen = 0; !plan.count || seen < *plan.count; ++seen) {
        const auto entry = context.session.inbox().next(
            [&](NotificationKind kind) { return plan.shows(kind); }, plan.patience,
            [&](uint64_t lost) { context.output.lost(lost); });
        if (!entry && !plan.count) {
            return;
        }
        if (!entry) {
            throw Failure(ExitStatus::NoAnswer, "no-response",
                          std::to_string(seen) + " of " + std::to_string(*plan.count) +
                              " events came");
        }
        const Event event = describeEvent(*entry);
        context.output.result(event.object, event.text);
    }
}

void enable(const Watch& wanted, Context& context) {
    Session& session = context.session;
    if (wanted.wantsI3c()) {
        const int events = (wanted.names("ibi") ? 0x01 : 0) | (wanted.names("hotjoin") ? 0x08 : 0);
        session.concernFamily("i3c");
        I3c(session).ccc(parseCcc("enec", {std::to_string(events)}, "", ""), 0);
    }
    session.concernFamily("gpio");
    if (wanted.names("uart")) {
        Uart(session, context.output, wanted.uart);
    }
    if (wanted.wantsPins()) {
        session.supplyPins();
    }
}

/// The pins are armed for as long as the work takes, however it ends.
void whileArmed(const std::vector<Edge>& edges, Session& session,
                const std::function<void()>& work) {
    Gpio gpio(session);
    size_t armed = 0;
    try {
        for (; armed < edges.size(); ++armed) {
            gpio.arm(edges[armed].pin, edges[armed].trigger);
        }
        work();
        for (; armed > 0; --armed) {
            gpio.disarm(edges[armed - 1].pin);
        }
    } catch (const Failure&) {
        for (; armed > 0; --armed) {
            gpio.disarmAnyway(edges[armed - 1].pin);
        }
        throw;
    }
}

void watch(const Watch& wanted, Context& context) {
    const Plan plan(wanted);
    if (!context.options.voltage.empty() && wanted.wantsPins() && wanted.wantsI3c()) {
        throw Failure::ofUsage("-V of which supply? Switch both on first, with power on");
    }
    if (!context.session.rehearses()) {
        context.session.inbox(); // before anything is enabled: the first event is not missed
    }
    enable(wanted, context);
    const auto show = [&] {
        context.output.result({{"event", "ready"}}, "ready");
        for (const Edge& edge : plan.edges) {
            if (wanted.initialState) {
                tellLevel(context, edge.pin);
            }
        }
        if (!context.session.rehearses()) {
            follow(plan, context);
        }
    };
    plan.edges.empty() ? show() : whileArmed(plan.edges, context.session, show);
}

} // namespace

void addWatchCommand(Command app, Invocation& invocation) {
    const Command command = app.addCommand("watch", "Shows what the adapter sends by itself");
    const auto wanted = std::make_shared<Watch>();
    command
        .addOption("KIND", wanted->kinds,
                   "ibi, hotjoin, gpio, uart: is enabled and shown; without any all is shown")
        .typeName("");
    command.addOption("-n,--num-events", wanted->count, "Ends behind so many").typeName("N");
    command.addOption("--idle-timeout", wanted->idleTimeout, "Ends when none came for so long")
        .typeName("S");
    command.addFlag("--initial-state", wanted->initialState, "Shows the pins' levels first");
    command
        .addOption("--edge", wanted->edges,
                   "PIN=rising, falling, both, low or high: while it watches")
        .typeName("PIN=EDGE")
        .oneEachTime();
    addUartOptions(command, wanted->uart);
    onChosen(command, invocation, [wanted](Context& context) { watch(*wanted, context); });
}

} // namespace veltra
