// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/StrictEngine.hpp"

#include "sdk/BlockingApi.hpp"

#include <veltrasdk/result.h>

#include <chrono>

namespace {

// A longer one takes so long to write that nothing is gained.
constexpr size_t maxOverlappingRequest = 512;

// After an unplug the write fails first, and the read a moment later.
constexpr std::chrono::milliseconds failedWriteWait{100};

} // namespace

StrictEngine::StrictEngine(int timeout, TransactionIds& ids, CommunicationManager& adapterLink)
    : timeoutMs(timeout), transactionIds(ids), link(adapterLink) {}

StrictEngine::Turn StrictEngine::begin(size_t maxAnswerSize) {
    Lock lock(mutex);
    if (hasEnded()) {
        return nullptr;
    }
    ++inside;
    const uint64_t turn = nextTurn++;
    Slot* slot = nullptr;
    turnPassed.wait(lock, [&] {
        if (hasEnded()) {
            return true;
        }
        slot = turn == servedTurns ? outstanding.findFree(overlap) : nullptr;
        return slot != nullptr;
    });
    ++servedTurns;
    if (slot == nullptr) {
        leave();
        return nullptr;
    }
    do {
        slot->transactionId = transactionIds.next();
    } while (inside > 1 && outstanding.find(slot->transactionId) != nullptr);
    slot->stage = Outstanding::Stage::Preparing;
    slot->turn = turn;
    slot->maxAnswerSize = maxAnswerSize;
    if (nextTurn != servedTurns) {
        turnPassed.notify_all();
    }
    return Turn(slot, EndTurn{this});
}

uint16_t StrictEngine::send(const RequestFrame& request) {
    Lock lock(mutex);
    Slot* const slot = outstanding.find(request.transactionId());
    if (slot == nullptr) {
        lock.unlock();
        return sendUnanswered(request);
    }
    slot->goesAlone =
        request.size() > maxOverlappingRequest || slot->maxAnswerSize > link.maxSizeInOneReport();
    turnPassed.wait(lock, [&] { return hasEnded() || inside == 1 || outstanding.mayGo(*slot); });
    if (hasEnded()) {
        return ResultCode_NotConnected;
    }
    slot->command = request.commandCode();
    slot->stage = Outstanding::Stage::OnWire;
    if (inside > 1) {
        turnPassed.notify_all();
    }
    lock.unlock();
    const bool written = write(request);
    lock.lock();
    await(lock, *slot, written);
    if (slot->stage == Outstanding::Stage::Answered) {
        return ResultCode_Success;
    }
    slot->stage = Outstanding::Stage::Over;
    return hasEnded() ? ResultCode_NotConnected : ResultCode_NoResponse;
}

void StrictEngine::await(Lock& lock, Slot& slot, bool written) {
    const auto ended = [&] { return slot.stage == Outstanding::Stage::Answered || hasEnded(); };
    if (written && timeoutMs == BlockingApi::noTimeout) {
        slot.ended.wait(lock, ended);
        return;
    }
    const auto limit = written ? std::chrono::milliseconds(timeoutMs) : failedWriteWait;
    slot.ended.wait_until(lock, std::chrono::steady_clock::now() + limit, ended);
}

bool StrictEngine::write(const RequestFrame& request) {
    const std::lock_guard<std::mutex> writing(writeMutex);
    return link.writeRequest(request.data(), request.size());
}

uint16_t StrictEngine::sendUnanswered(const RequestFrame& request) {
    if (link.hasReadError()) {
        return ResultCode_NotConnected;
    }
    if (write(request)) {
        return ResultCode_Success;
    }
    Lock lock(mutex);
    const bool isGone =
        gone.wait_for(lock, failedWriteWait, [this] { return link.hasReadError(); });
    return isGone ? ResultCode_NotConnected : ResultCode_NoResponse;
}

void StrictEngine::end(Slot& slot) {
    const Lock lock(mutex);
    slot.stage = Outstanding::Stage::Free;
    leave();
}

void StrictEngine::leave() {
    --inside;
    if (inside > 0) {
        turnPassed.notify_all();
    } else if (isClosing) {
        allLeft.notify_all();
    }
}

void StrictEngine::handleResponse(const std::vector<uint8_t>& frame) {
    const Lock lock(mutex);
    if (!outstanding.answer(frame)) {
        ++unmatched;
    }
}

void StrictEngine::handleReadError() {
    const Lock lock(mutex);
    outstanding.wakeAll();
    turnPassed.notify_all();
    gone.notify_all();
}

void StrictEngine::setOverlap(uint8_t requests) {
    const Lock lock(mutex);
    overlap = requests;
    turnPassed.notify_all();
}

uint64_t StrictEngine::unmatchedResponses() const {
    const Lock lock(mutex);
    return unmatched;
}

StrictEngine::Presence::Presence(StrictEngine* strictEngine) : engine(strictEngine) {
    if (engine != nullptr) {
        const Lock lock(engine->mutex);
        ++engine->inside;
    }
}

StrictEngine::Presence::~Presence() {
    if (engine != nullptr) {
        const Lock lock(engine->mutex);
        engine->leave();
    }
}

StrictEngine::Closing::Closing(StrictEngine& strictEngine)
    : engine(strictEngine), connecting(engine.connectionMutex) {
    Lock lock(engine.mutex);
    engine.isClosing = true;
    engine.outstanding.wakeAll();
    engine.turnPassed.notify_all();
    engine.allLeft.wait(lock, [this] { return engine.inside == 0; });
}

StrictEngine::Closing::~Closing() {
    const Lock lock(engine.mutex);
    engine.isClosing = false;
}
