#include "support/ScriptedHid.hpp"

#include <hidapi.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <iterator>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

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

/// Reads time out early, so that closing a link does not cost every test a tenth of a second.
constexpr int longestReadMs = 5;

/// A node of the list that hid_enumerate returns, with the texts that it points to.
struct Node {
    hid_device_info info{};
    std::string path;
    std::wstring serialNumber;
};

void moveTo(std::deque<Bytes>& input, std::vector<Bytes> reports) {
    std::move(reports.begin(), reports.end(), std::back_inserter(input));
}

} // namespace

std::string hexDump(const Bytes& bytes) {
    static constexpr char digits[] = "0123456789ABCDEF";
    const auto padding =
        std::find_if(bytes.rbegin(), bytes.rend(), [](uint8_t b) { return b != 0; });
    const auto shown = static_cast<size_t>(std::distance(padding, bytes.rend()));
    std::string text;
    for (size_t i = 0; i < shown; ++i) {
        text += i % 16 == 0 ? "\n  " : " ";
        text += digits[bytes[i] >> 4U];
        text += digits[bytes[i] & 0xFU];
    }
    return text + "\n  and " + std::to_string(bytes.size() - shown) + " zeros";
}

ScriptedHid::ScriptedHid() {
    current = this;
}

ScriptedHid::~ScriptedHid() {
    EXPECT_EQ(opened.size(), 0U) << "a device was opened and not closed";
    EXPECT_EQ(readingThreads(), 0U) << "a thread that reads has not ended";
    EXPECT_EQ(listsOut, 0U) << "an enumeration was not freed";
    EXPECT_EQ(initialised, exited) << "hid_init and hid_exit were not called in pairs";
    EXPECT_TRUE(script.empty()) << script.size() << " expected writes were not made; the next is"
                                << hexDump(script.front().report);
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
    input.push_back(std::move(report));
    changed.notify_all();
}

void ScriptedHid::deliverEndlessly(std::optional<Bytes> report) {
    const std::lock_guard<std::mutex> lock(mutex);
    endlessInput = std::move(report);
    changed.notify_all();
}

void ScriptedHid::failOpening(bool fail) {
    const std::lock_guard<std::mutex> lock(mutex);
    openingFails = fail;
}

void ScriptedHid::failWriting(std::optional<int> result) {
    const std::lock_guard<std::mutex> lock(mutex);
    writingResult = result;
}

void ScriptedHid::failReading(bool fail) {
    const std::lock_guard<std::mutex> lock(mutex);
    readingFails = fail;
    changed.notify_all();
}

std::vector<Bytes> ScriptedHid::writes() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return written;
}

size_t ScriptedHid::readCalls() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return reads;
}

size_t ScriptedHid::enumerateCalls() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return enumerations;
}

std::string ScriptedHid::openedPath() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return lastOpenedPath;
}

size_t ScriptedHid::listsOutAtOpening() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return openingListsOut;
}

size_t ScriptedHid::openDevices() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return opened.size();
}

size_t ScriptedHid::readingThreads() {
    return ReadingThread::count;
}

size_t ScriptedHid::initCalls() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return initialised;
}

size_t ScriptedHid::exitCalls() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return exited;
}

size_t ScriptedHid::lastReadLength() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return readLength;
}

int ScriptedHid::lastReadTimeout() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return readTimeoutMs;
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
    return waitUntil([&] {
        return input.empty() && std::all_of(opened.begin(), opened.end(), [](const auto& device) {
                   return device.input.empty() && device.readerIsWaiting;
               });
    });
}

ScriptedHid::OpenDevice* ScriptedHid::find(const void* device) {
    const auto found = std::find_if(opened.begin(), opened.end(), [&](const OpenDevice& candidate) {
        return &candidate == device;
    });
    if (found == opened.end()) {
        ADD_FAILURE() << "a device that is not open was used";
        return nullptr;
    }
    return &*found;
}

bool ScriptedHid::isReadable(const OpenDevice& device) const {
    return !device.input.empty() || !input.empty() || endlessInput.has_value();
}

int ScriptedHid::init() {
    const std::lock_guard<std::mutex> lock(mutex);
    ++initialised;
    return 0;
}

int ScriptedHid::exit() {
    const std::lock_guard<std::mutex> lock(mutex);
    ++exited;
    return 0;
}

void* ScriptedHid::enumerate(uint16_t vendorId, uint16_t productId) {
    const std::lock_guard<std::mutex> lock(mutex);
    EXPECT_EQ(vendorId, 0) << "all devices are enumerated";
    EXPECT_EQ(productId, 0) << "all devices are enumerated";
    ++enumerations;
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
    const std::lock_guard<std::mutex> lock(mutex);
    openingListsOut = listsOut;
    if (openingFails) {
        return nullptr;
    }
    lastOpenedPath = path;
    return &opened.emplace_back();
}

void ScriptedHid::close(void* device) {
    const std::lock_guard<std::mutex> lock(mutex);
    const OpenDevice* const closed = find(device);
    opened.remove_if([&](const OpenDevice& candidate) { return &candidate == closed; });
}

int ScriptedHid::write(void* device, const uint8_t* data, size_t length) {
    const std::lock_guard<std::mutex> lock(mutex);
    OpenDevice* const target = find(device);
    if (target == nullptr) {
        return -1;
    }
    Bytes report(data, data + length);
    if (!script.empty()) {
        EXPECT_TRUE(report == script.front().report)
            << "expected:" << hexDump(script.front().report) << "\nseen:" << hexDump(report);
        moveTo(target->input, std::move(script.front().answers));
        script.pop_front();
    } else if (responder) {
        moveTo(target->input, responder(report));
    } else if (scripted) {
        ADD_FAILURE() << "a write that nothing expects:" << hexDump(report);
    }
    written.push_back(std::move(report));
    changed.notify_all();
    return writingResult.value_or(static_cast<int>(length));
}

int ScriptedHid::readTimeout(void* device, uint8_t* data, size_t length, int milliseconds) {
    static const thread_local ReadingThread reading;
    std::unique_lock<std::mutex> lock(mutex);
    OpenDevice* const source = find(device);
    if (source == nullptr) {
        return -1;
    }
    ++reads;
    readLength = length;
    readTimeoutMs = milliseconds;
    source->readerIsWaiting = !isReadable(*source);
    changed.notify_all();
    changed.wait_for(lock, std::chrono::milliseconds(std::min(milliseconds, longestReadMs)),
                     [&] { return readingFails || isReadable(*source); });
    if (!isReadable(*source)) {
        return readingFails ? -1 : 0;
    }
    source->readerIsWaiting = false;
    std::deque<Bytes>& queue = source->input.empty() ? input : source->input;
    const Bytes report = queue.empty() ? *endlessInput : queue.front();
    if (!queue.empty()) {
        queue.pop_front();
    }
    const size_t count = std::min(report.size(), length);
    std::copy_n(report.begin(), count, data);
    return static_cast<int>(count);
}

} // namespace test_support

using test_support::ScriptedHid;

// Visible, so that they stand in front of hidapi's own in a program that links the shared library.
#pragma GCC visibility push(default)
extern "C" {

int hid_init(void) {
    return ScriptedHid::instance().init();
}

int hid_exit(void) {
    return ScriptedHid::instance().exit();
}

hid_device_info* hid_enumerate(unsigned short vendorId, unsigned short productId) {
    return static_cast<hid_device_info*>(ScriptedHid::instance().enumerate(vendorId, productId));
}

void hid_free_enumeration(hid_device_info* devices) {
    ScriptedHid::instance().freeEnumeration(devices);
}

hid_device* hid_open_path(const char* path) {
    return static_cast<hid_device*>(ScriptedHid::instance().openPath(path));
}

void hid_close(hid_device* device) {
    ScriptedHid::instance().close(device);
}

int hid_write(hid_device* device, const unsigned char* data, size_t length) {
    return ScriptedHid::instance().write(device, data, length);
}

int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds) {
    return ScriptedHid::instance().readTimeout(device, data, length, milliseconds);
}

} // extern "C"
#pragma GCC visibility pop
