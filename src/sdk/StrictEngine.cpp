// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/StrictEngine.hpp"

#include <veltrasdk/result.h>

namespace {

// After an unplug the write fails first, and the read a moment later.
constexpr int failedWriteWaitMs = 100;

} // namespace

/// An operation's stay inside, throughout which the mutex is held but for waiting and writing.
class StrictEngine::Stay {
public:
    explicit Stay(StrictEngine& strictEngine) : engine(strictEngine) {
        const bool isAlone = ++engine.inside == 1;
        slot =
            isAlone && !engine.hasEnded() ? engine.outstanding.findFree(1) : engine.waitForTurn();
        if (slot != nullptr) {
            engine.current = slot;
            slot->stage = Stage::Preparing;
            slot->transactionId = engine.transactionIds.next();
            if (!isAlone) {
                engine.makeUnique(*slot);
            }
        }
    }
    ~Stay() {
        if (slot != nullptr) {
            if (engine.current == slot) {
                engine.current = nullptr;
            }
            slot->stage = Stage::Free;
        }
        engine.leave();
    }
    Stay(const Stay&) = delete;
    Stay& operator=(const Stay&) = delete;

    StrictEngine& engine;
    /// Null when all operations are being ended.
    Slot* slot;
};

StrictEngine::StrictEngine(int timeout, TransactionIds& ids, CommunicationManager& adapterLink)
    : timeoutMs(timeout), transactionIds(ids), link(adapterLink) {}

uint16_t StrictEngine::transact(size_t maxAnswerSize, SendRequest sendRequest, Judge judge) {
    const std::lock_guard<std::mutex> lock(mutex);
    const Stay stay(*this);
    if (stay.slot == nullptr) {
        return ResultCode_NotConnected;
    }
    Slot& slot = *stay.slot;
    slot.maxAnswerSize = maxAnswerSize;
    const uint16_t sent = sendRequest(slot.transactionId);
    if (sent != ResultCode_Success) {
        return sent;
    }
    BlockingApi::waitFor(slot.ended, mutex, slot.isWritten ? timeoutMs : failedWriteWaitMs,
                         [&] { return slot.stage != Stage::OnWire; });
    if (slot.stage == Stage::Answered) {
        return judge(ResponseFrame(slot.response));
    }
    return slot.stage == Stage::Ended ? ResultCode_NotConnected : ResultCode_NoResponse;
}

uint16_t StrictEngine::send(const RequestFrame& request) {
    if (current == nullptr) {
        return sendUnanswered(request);
    }
    Slot& slot = *current;
    slot.header = request.header();
    slot.requestSize = request.message().size();
    if (inside > 1) {
        waitToGo(slot);
        if (hasEnded()) {
            return ResultCode_NotConnected;
        }
    }
    slot.stage = Stage::OnWire;
    mutex.unlock();
    const bool isWritten = link.writeRequest(request.message());
    mutex.lock();
    slot.isWritten = isWritten;
    current = nullptr;
    tellWaiting();
    return ResultCode_Success;
}

StrictEngine::Slot* StrictEngine::waitForTurn() {
    const uint64_t turn = nextTurn++;
    Slot* slot = nullptr;
    wait([&] {
        if (!hasEnded() && current == nullptr && turn == servedTurns) {
            slot = outstanding.findFree(overlap);
        }
        return slot != nullptr || hasEnded();
    });
    ++servedTurns;
    return slot;
}

void StrictEngine::makeUnique(Slot& slot) {
    while (outstanding.hasTwin(slot)) {
        slot.transactionId = transactionIds.next();
    }
}

void StrictEngine::waitToGo(const Slot& slot) {
    wait([&] { return hasEnded() || outstanding.mayGo(slot, link.maxSizeInOneReport()); });
}

template <typename Condition>
void StrictEngine::wait(const Condition& condition) {
    ++waiting;
    BlockingApi::waitFor(changed, mutex, BlockingApi::noTimeout, condition);
    --waiting;
}

uint16_t StrictEngine::sendUnanswered(const RequestFrame& request) {
    std::unique_lock<std::mutex> lock(mutex);
    if (isGone) {
        return ResultCode_NotConnected;
    }
    lock.unlock();
    if (link.writeRequest(request.message())) {
        return ResultCode_Success;
    }
    lock.lock();
    const bool isUnplugged =
        BlockingApi::waitFor(gone, mutex, failedWriteWaitMs, [this] { return isGone; });
    return isUnplugged ? ResultCode_NotConnected : ResultCode_NoResponse;
}

void StrictEngine::tellWaiting() {
    if (waiting != 0) {
        changed.notify_all();
    }
}

void StrictEngine::leave() {
    --inside;
    if (inside != 0) {
        tellWaiting();
    } else if (isClosing) {
        allLeft.notify_all();
    }
}

void StrictEngine::handleResponse(ResponseFrame response) {
    const std::lock_guard<std::mutex> lock(mutex);
    Slot* const slot = outstanding.findAwaiting(response.header());
    if (slot == nullptr) {
        ++unmatched;
        return;
    }
    response.copyTo(slot->response);
    slot->stage = Stage::Answered;
    slot->ended.notify_one();
}

void StrictEngine::handleReadError() {
    const std::lock_guard<std::mutex> lock(mutex);
    isGone = true;
    endAll();
    gone.notify_all();
}

void StrictEngine::forgetReadError() {
    const std::lock_guard<std::mutex> lock(mutex);
    isGone = false;
}

void StrictEngine::endAll() {
    outstanding.endAll();
    tellWaiting();
}

void StrictEngine::setOverlap(uint8_t requests) {
    const std::lock_guard<std::mutex> lock(mutex);
    overlap = requests;
    tellWaiting();
}

uint64_t StrictEngine::unmatchedResponses() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return unmatched;
}

StrictEngine::Presence::Presence(StrictEngine* strictEngine) : engine(strictEngine) {
    if (engine != nullptr) {
        const std::lock_guard<std::mutex> lock(engine->mutex);
        ++engine->inside;
    }
}

StrictEngine::Presence::~Presence() {
    if (engine != nullptr) {
        const std::lock_guard<std::mutex> lock(engine->mutex);
        engine->leave();
    }
}

StrictEngine::Closing::Closing(StrictEngine& strictEngine)
    : engine(strictEngine), connecting(engine.connectionMutex) {
    const std::lock_guard<std::mutex> lock(engine.mutex);
    engine.isClosing = true;
    engine.endAll();
    BlockingApi::waitFor(engine.allLeft, engine.mutex, BlockingApi::noTimeout,
                         [this] { return engine.inside == 0; });
}

StrictEngine::Closing::~Closing() {
    const std::lock_guard<std::mutex> lock(engine.mutex);
    engine.isClosing = false;
}
