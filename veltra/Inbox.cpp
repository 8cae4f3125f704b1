// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Inbox.hpp"

#include "Failure.hpp"
#include "Interruption.hpp"

#include <veltrasdk/result.h>

#include <algorithm>
#include <cerrno>
#include <poll.h>

namespace veltra {

namespace {

/// Several seconds of a busy bus.
constexpr size_t queueBytes = size_t{4} << 20U;

using Clock = std::chrono::steady_clock;

/// Until there is something to look at; rounded up, so that the time is over when it returns.
int remaining(const std::optional<Clock::time_point>& end) {
    if (!end) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end - Clock::now()).count();
    return static_cast<int>(std::max<decltype(left)>(left, 0));
}

/// Of whichever operation waits.
Failure endOfLink() {
    Failure failure = Failure::ofResult(ResultCode_NotConnected, {}, 0);
    failure.during.reset();
    return failure;
}

} // namespace

Inbox::Inbox(VeltraSDK& adapter) : queue(adapter, queueBytes) {
    if (queue.descriptor() < 0) {
        throw Failure(ExitStatus::Refused, "memory",
                      "either memory or a file descriptor is missing for the notification queue");
    }
}

std::optional<Inbox::Entry> Inbox::findKept(const std::function<bool(NotificationKind)>& wanted) {
    const auto found = std::find_if(kept.begin(), kept.end(),
                                    [&](const Entry& entry) { return wanted(entry.kind); });
    if (found == kept.end()) {
        return std::nullopt;
    }
    Entry entry = std::move(*found);
    kept.erase(found);
    return entry;
}

void Inbox::collect(const std::function<void(uint64_t)>& lost) {
    for (Entry entry; !ended && queue.take(entry);) {
        if (entry.lostBefore > 0) {
            lost(entry.lostBefore);
        }
        ended = entry.isEndOfLink();
        if (!ended) {
            kept.push_back(std::move(entry));
        }
    }
}

void Inbox::discard() {
    collect([](uint64_t) {});
    kept.clear();
    if (ended) {
        throw endOfLink();
    }
}

std::optional<Inbox::Entry> Inbox::next(const std::function<bool(NotificationKind)>& wanted,
                                        std::optional<std::chrono::milliseconds> patience,
                                        const std::function<void(uint64_t)>& lost) {
    std::optional<Clock::time_point> end;
    if (patience) {
        end = Clock::now() + *patience;
    }
    for (;;) {
        collect(lost);
        if (std::optional<Entry> entry = findKept(wanted)) {
            return entry;
        }
        if (ended) {
            throw endOfLink();
        }
        if (Interruption::requested()) {
            throw Failure::interruption();
        }
        pollfd sources[] = {{queue.descriptor(), POLLIN, 0},
                            {Interruption::descriptor(), POLLIN, 0}};
        const int left = remaining(end);
        if (poll(sources, 2, left) == 0 && left <= 0) {
            return std::nullopt;
        }
    }
}

} // namespace veltra
