// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/ScriptedHid.hpp"

#include <hidapi.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <memory>
#include <thread>
#include <utility>

namespace test_support {

namespace {

ScriptedHid* current = nullptr;

/// Made by a thread's first read and destroyed with the thread, before anybody has joined it.
class ReadingThread {
public:
    ReadingThread() { ++count; }
    ~ReadingThread() { --count; }
    ReadingThread(const ReadingThread&) = delete;
    ReadingThread& operator=(const ReadingThread&) = delete;

    static inline std::atomic<size_t> count{0};
};

std::string hex(uint8_t byte) {
    static constexpr char digits[] = "0123456789ABCDEF";
    return {digits[byte >> 4U], digits[byte & 0xFU]};
}

void require(bool holds, const char* misuse) {
    if (!holds) {
        reportMisuse(misuse);
    }
}

/// A node of the list that hid_enumerate returns, with the texts that it points to.
struct Node {
    hid_device_info info{};
    std::string path;
    std::wstring serialNumber;
};

} // namespace

std::string hexDump(const Bytes& bytes) {
    const auto padding =
        std::find_if(bytes.rbegin(), bytes.rend(), [](uint8_t b) { return b != 0; });
    const auto shown = static_cast<size_t>(std::distance(padding, bytes.rend()));
    std::string text;
    for (size_t i = 0; i < shown; ++i) {
        text += i % 16 == 0 ? "\n  " : " ";
        text += hex(bytes[i]);
    }
    return text + "\n  and " + std::to_string(bytes.size() - shown) + " zeros";
}

std::string hexLine(const Bytes& bytes) {
    constexpr std::ptrdiff_t often = 5;
    std::string text;
    for (auto byte = bytes.begin(); byte != bytes.end();) {
        const auto end =
            std::find_if(byte, bytes.end(), [&](uint8_t other) { return other != *byte; });
        const auto run = end - byte < often ? 1 : end - byte;
        text += (text.empty() ? "" : " ") + hex(*byte);
        text += run == 1 ? "" : "*" + std::to_string(run);
        byte += run;
    }
    return text;
}

ScriptedHid::ScriptedHid() {
    current = this;
}

ScriptedHid::~ScriptedHid() {
    require(opened.empty(), "a device was opened and not closed");
    require(readingThreads() == 0, "a thread that reads has not ended");
    require(listsOut == 0, "an enumeration was not freed");
    require(initialised == exited, "hid_init and hid_exit were not called in pairs");
    if (!script.empty()) {
        reportMisuse(std::to_string(script.size()) + " expected writes were not made; the next is" +
                     hexDump(script.front().report));
    }
    current = nullptr;
}

ScriptedHid& ScriptedHid::instance() {
    return *current;
}

void ScriptedHid::attach(ScriptedDevice device) {
    const std::lock_guard<std::mutex> lock(mutex);
    devices.push_back(std::move(device));
}

void ScriptedHid::detachAll() {
    const std::lock_guard<std::mutex> lock(mutex);
    devices.clear();
}

void ScriptedHid::expectWrite(Bytes report, std::vector<Bytes> answers) {
    const std::lock_guard<std::mutex> lock(mutex);
    scripted = true;
    script.push_back({std::move(report), std::move(answers)});
}

void ScriptedHid::expectWrites(std::vector<Bytes> reports, std::vector<Bytes> answers) {
    for (Bytes& report : reports) {
        expectWrite(std::move(report));
    }
    const std::lock_guard<std::mutex> lock(mutex);
    script.back().answers = std::move(answers);
}

void ScriptedHid::respond(std::function<std::vector<Bytes>(const Bytes&)> newResponder) {
    const std::lock_guard<std::mutex> lock(mutex);
    responder = std::move(newResponder);
}

void ScriptedHid::deliver(Bytes report) {
    const std::lock_guard<std::mutex> lock(mutex);
    input.emplace_back(std::move(report));
    changed.notify_all();
}

void ScriptedHid::deliverReadError() {
    const std::lock_guard<std::mutex> lock(mutex);
    input.emplace_back(std::nullopt);
    changed.notify_all();
}

void ScriptedHid::failNth(HidCall call, size_t position) {
    const std::lock_guard<std::mutex> lock(mutex);
    failingCall = call;
    callsUntilFailure = position;
    nthFailed = false;
}

bool ScriptedHid::fails(HidCall call) {
    if (call != failingCall || callsUntilFailure == 0 || --callsUntilFailure > 0) {
        return false;
    }
    nthFailed = true;
    return true;
}

size_t ScriptedHid::openDevices() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return opened.size();
}

size_t ScriptedHid::readingThreads() {
    return ReadingThread::count;
}

template <typename Condition>
bool ScriptedHid::waitUntil(Condition condition, int limitMs) const {
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, std::chrono::milliseconds(limitMs), condition);
}

bool ScriptedHid::waitForWrites(size_t count) const {
    return waitUntil([&] { return written.size() >= count; });
}

bool ScriptedHid::waitForReads(size_t count, int limitMs) const {
    return waitUntil([&] { return reads >= count; }, limitMs);
}

bool ScriptedHid::waitUntilDrained() const {
    return waitUntil([this] { return isDrained(); });
}

bool ScriptedHid::isDrained() const {
    return input.empty() && std::all_of(opened.begin(), opened.end(), [](const auto& device) {
               return device.input.empty() && device.readerIsWaiting;
           });
}

ScriptedHid::OpenDevice* ScriptedHid::find(const void* device) {
    const auto found = std::find_if(opened.begin(), opened.end(), [&](const OpenDevice& candidate) {
        return &candidate == device;
    });
    if (found == opened.end()) {
        reportMisuse("a device that is not open was used");
        return nullptr;
    }
    return &*found;
}

bool ScriptedHid::isReadable(const OpenDevice& device) const {
    return !device.input.empty() || !input.empty() || endlessInput.has_value();
}

class ScriptedHid::Alone {
public:
    explicit Alone(ScriptedHid& hid) : stand(hid), lock(hid.mutex) {
        if (!stand.bearsLittle) {
            return;
        }
        require(++stand.callsInside == 1, "two calls that exclude each other were made at once");
        lock.unlock();
        std::this_thread::yield();
        lock.lock();
        --stand.callsInside;
    }

private:
    ScriptedHid& stand;
    std::unique_lock<std::mutex> lock;
};

int ScriptedHid::init() {
    const Alone alone(*this);
    ++initialised;
    return fails(HidCall::Init) ? -1 : 0;
}

int ScriptedHid::exit() {
    const Alone alone(*this);
    require(!bearsLittle || opened.empty(), "hidapi was shut down while a device was open");
    ++exited;
    return fails(HidCall::Exit) ? -1 : 0;
}

void* ScriptedHid::enumerate(uint16_t vendorId, uint16_t productId) {
    const Alone alone(*this);
    require(vendorId == 0 && productId == 0, "not all devices are enumerated");
    ++enumerations;
    if (fails(HidCall::Enumerate)) {
        return nullptr;
    }
    hid_device_info* first = nullptr;
    for (auto device = devices.rbegin(); device != devices.rend(); ++device) {
        auto node = std::make_unique<Node>();
        node->path = device->path.value_or("");
        node->serialNumber = device->serialNumber.value_or(L"");
        node->info.path = device->path ? node->path.data() : nullptr;
        node->info.vendor_id = device->vendorId;
        node->info.product_id = device->productId;
        node->info.serial_number = device->serialNumber ? node->serialNumber.data() : nullptr;
        node->info.next = first;
        // The node is found again by its first member.
        first = &node.release()->info;
    }
    listsOut += first != nullptr ? 1 : 0;
    return first;
}

void ScriptedHid::freeEnumeration(void* list) {
    const std::lock_guard<std::mutex> lock(mutex);
    listsOut -= list != nullptr ? 1 : 0;
    for (auto* info = static_cast<hid_device_info*>(list); info != nullptr;) {
        hid_device_info* const next = info->next;
        delete reinterpret_cast<Node*>(info);
        info = next;
    }
}

void* ScriptedHid::openPath(const char* path) {
    const Alone alone(*this);
    openingListsOut = listsOut;
    if (fails(HidCall::OpenPath)) {
        return nullptr;
    }
    lastOpenedPath = path;
    return &opened.emplace_back();
}

void ScriptedHid::close(void* device) {
    const Alone alone(*this);
    const OpenDevice* const closed = find(device);
    opened.remove_if([&](const OpenDevice& candidate) { return &candidate == closed; });
}

std::vector<Bytes> ScriptedHid::answersTo(const Bytes& report, std::unique_lock<std::mutex>& lock) {
    if (!script.empty()) {
        const ExpectedWrite expected = std::move(script.front());
        script.pop_front();
        if (report != expected.report) {
            reportMisuse("expected:" + hexDump(expected.report) + "\nseen:" + hexDump(report));
        }
        return expected.answers;
    }
    if (responder) {
        lock.unlock();
        std::vector<Bytes> answers = responder(report);
        lock.lock();
        return answers;
    }
    if (scripted) {
        reportMisuse("a write that nothing expects:" + hexDump(report));
    }
    return {};
}

int ScriptedHid::write(void* device, const uint8_t* data, size_t length) {
    std::unique_lock<std::mutex> lock(mutex);
    OpenDevice* const target = find(device);
    if (target == nullptr) {
        return -1;
    }
    Bytes report(data, data + length);
    constexpr size_t packetHeader = 1;
    const bool isFirst = (report.at(packetHeader) & 1U) != 0;
    const bool isLost = fails(HidCall::Write);
    target->messageIsLost = isLost || (target->messageIsLost && !isFirst);
    if (target->messageIsLost) {
        return isLost ? -1 : static_cast<int>(length);
    }
    std::vector<Bytes> answers = answersTo(report, lock);
    if (find(device) == nullptr) {
        return -1;
    }
    std::move(answers.begin(), answers.end(), std::back_inserter(target->input));
    readingFails = readingFails || readingFailsBehindAnswers;
    written.push_back(std::move(report));
    changed.notify_all();
    if (writesSettle) {
        require(changed.wait_for(lock, std::chrono::milliseconds(generousLimitMs),
                                 [this] { return isDrained(); }),
                "what answers a write was not read");
    }
    return writingResult.value_or(static_cast<int>(length));
}

std::optional<Bytes> ScriptedHid::nextReport(OpenDevice& device) {
    const auto taken = [](auto& queue) {
        std::optional<Bytes> first = std::move(queue.front());
        queue.pop_front();
        return first;
    };
    if (!device.input.empty()) {
        return taken(device.input);
    }
    return input.empty() ? endlessInput : taken(input);
}

int ScriptedHid::readTimeout(void* device, uint8_t* data, size_t length, int milliseconds) {
    static const thread_local ReadingThread reading;
    std::unique_lock<std::mutex> lock(mutex);
    OpenDevice* const source = find(device);
    if (source == nullptr || fails(HidCall::ReadTimeout)) {
        return -1;
    }
    ++reads;
    readLength = length;
    readTimeoutMs = milliseconds;
    source->readerIsWaiting = !isReadable(*source);
    changed.notify_all();
    const std::chrono::microseconds asked = std::chrono::milliseconds(milliseconds);
    changed.wait_for(lock, std::min(asked, maxReadTime),
                     [&] { return readingFails || isReadable(*source); });
    if (!isReadable(*source)) {
        return readingFails ? -1 : 0;
    }
    source->readerIsWaiting = false;
    const std::optional<Bytes> report = nextReport(*source);
    if (!report) {
        return -1;
    }
    const size_t count = std::min(report->size(), length);
    std::copy_n(report->begin(), count, data);
    return static_cast<int>(count);
}

} // namespace test_support
