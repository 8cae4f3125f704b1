// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace test_support {

using Bytes = std::vector<uint8_t>;

/// How long a test waits for something that must happen, whatever the machine's load.
constexpr int generousLimitMs = 60'000;

/// One HID device that the stand-in enumerates.
struct ScriptedDevice {
    /// Null stands for a device that is listed without a path.
    std::optional<std::string> path;
    uint16_t vendorId;
    uint16_t productId;
    /// Null stands for a device whose strings cannot be read.
    std::optional<std::wstring> serialNumber;
};

/// The functions of hidapi that can fail.
enum class HidCall { Init, Exit, Enumerate, OpenPath, Write, ReadTimeout };

/// Called with what a program did that it must not do, with the bytes where some differ. Every
/// program that links the stand-in defines it: a test fails, a fuzzer ends with a finding.
void reportMisuse(const std::string& text);

/// A stand-in for hidapi: defines the eight functions that the library calls, serves devices and
/// reports, records what it is told, and fails on demand. One exists at a time; its destructor
/// reports whatever was opened and not closed, and whoever still reads.
///
/// A conversation is a list of expected writes, each with the input reports that answer it. A write
/// that differs from the expected one is a misuse, which shows the bytes of both. A late answer
/// stands at a later write, a lost one nowhere, a doubled one twice. What depends on the report or
/// on the moment is a responder's: it may wait, which stalls the write, and it may use the stand-in
/// itself, to fail the write, to deliver more or to be unplugged at any report of a message.
class ScriptedHid {
public:
    ScriptedHid();
    ~ScriptedHid();
    ScriptedHid(const ScriptedHid&) = delete;
    ScriptedHid& operator=(const ScriptedHid&) = delete;

    static ScriptedHid& instance();

    /// Devices appear in the order in which they were attached.
    void attach(ScriptedDevice device);
    void detachAll();

    /// Expects a write of exactly these bytes (report identifier included) and answers it.
    void expectWrite(Bytes report, std::vector<Bytes> answers = {});
    /// Expects the writes of a long message and answers the last of them.
    void expectWrites(std::vector<Bytes> reports, std::vector<Bytes> answers);

    /// Answers every write that no script expects with what @p responder makes of it, on the thread
    /// that writes and without a lock.
    void respond(std::function<std::vector<Bytes>(const Bytes& report)> responder);

    /// Makes an input report readable now, also before a device is open. Where several are open,
    /// one of them reads it; an answer is read by the device that was written to.
    void deliver(Bytes report);
    /// Makes one read fail in the place of a report.
    void deliverReadError();
    /// Makes every read that finds nothing else return @p report at once; nothing ends that.
    void deliverEndlessly(std::optional<Bytes> report) { set(endlessInput, std::move(report)); }

    /// Whether a write returns only when the reader has dealt with what answers it: an operation
    /// with a time-out of 0 then finds its response there or never.
    void settleWrites(bool settle) { set(writesSettle, settle); }
    /// How long a read waits at most. Reads time out early, so that closing a link does not cost
    /// every test a tenth of a second.
    void limitReads(std::chrono::microseconds maxTime) { set(maxReadTime, maxTime); }

    /// Whether what libusb cannot bear is a misuse: two of the calls that initialise, enumerate,
    /// open, close and shut down at the same time, and shutting down with a device open.
    void bearAsLittleAsLibusb(bool little) { set(bearsLittle, little); }

    /// Makes one call of a function fail: the next, the second, and so on; 0 for none. A failed
    /// enumeration, opening or read has not taken place, and the adapter does not answer the
    /// message of which a write was lost.
    void failNth(HidCall call, size_t position);
    /// Whether there were so many calls.
    [[nodiscard]] bool nthHasFailed() const { return get(nthFailed); }
    /// What hid_write returns instead of the number of bytes; nothing for success.
    void failWriting(std::optional<int> result) { set(writingResult, result); }
    /// Whether hid_read_timeout returns -1 at once when it finds nothing to read, as it does after
    /// an unplug.
    void failReading(bool fail) { set(readingFails, fail); }
    /// The same as soon as what answers the next write has been read.
    void failReadingBehindAnswers() { set(readingFailsBehindAnswers, true); }

    /// Is told of every call with its arguments, as it begins; of a read as it ends, with what it
    /// read, and not of one that found nothing. It is called on the calling thread.
    using Recorder = std::function<void(const std::string& call)>;
    void record(Recorder recorder) { set(callRecorder, std::move(recorder)); }
    [[nodiscard]] Recorder recorder() const { return get(callRecorder); }

    /// The writes so far, report identifiers included.
    [[nodiscard]] std::vector<Bytes> writes() const { return get(written); }
    [[nodiscard]] size_t readCalls() const { return get(reads); }
    [[nodiscard]] size_t enumerateCalls() const { return get(enumerations); }
    /// The path of the last device opened.
    [[nodiscard]] std::string openedPath() const { return get(lastOpenedPath); }
    /// How many enumerations were not freed when hid_open_path was last called.
    [[nodiscard]] size_t listsOutAtOpening() const { return get(openingListsOut); }
    [[nodiscard]] size_t openDevices() const;
    /// How many threads have read and not ended yet. A thread that has ended calls nobody back.
    [[nodiscard]] static size_t readingThreads();
    /// Whether the calling thread is inside one of the eight functions.
    [[nodiscard]] static bool isServing();
    /// How often hid_init and hid_exit were called.
    [[nodiscard]] size_t initCalls() const { return get(initialised); }
    [[nodiscard]] size_t exitCalls() const { return get(exited); }
    /// The arguments of the last read.
    [[nodiscard]] size_t lastReadLength() const { return get(readLength); }
    [[nodiscard]] int lastReadTimeout() const { return get(readTimeoutMs); }

    /// Waits until so many writes were made. Returns false at the generous limit.
    [[nodiscard]] bool waitForWrites(size_t count) const;
    /// Waits until so many reads were begun.
    [[nodiscard]] bool waitForReads(size_t count, int limitMs = generousLimitMs) const;
    /// Waits until every delivered report was read and the reader has come back for more, that is
    /// until everything delivered so far was handled.
    [[nodiscard]] bool waitUntilDrained() const;

    // The eight functions end here.
    int init();
    int exit();
    void* enumerate(uint16_t vendorId, uint16_t productId);
    void freeEnumeration(void* list);
    void* openPath(const char* path);
    void close(void* device);
    int write(void* device, const uint8_t* data, size_t length);
    int readTimeout(void* device, uint8_t* data, size_t length, int milliseconds);

private:
    struct ExpectedWrite {
        Bytes report;
        std::vector<Bytes> answers;
    };

    /// What a hid_device pointer points to.
    struct OpenDevice {
        std::deque<Bytes> input;
        bool readerIsWaiting = false;
        /// Its adapter has lost a report of the message that is being written.
        bool messageIsLost = false;
    };

    /// One of the calls of which libusb bears one at a time; the lock is let go meanwhile, so that
    /// another can meet it.
    class Alone;

    /// The open device behind a pointer that the library hands back, or null and a misuse.
    OpenDevice* find(const void* device);
    [[nodiscard]] bool isReadable(const OpenDevice& device) const;
    /// What @p device reads next, or nothing for a read that fails.
    std::optional<Bytes> nextReport(OpenDevice& device);
    [[nodiscard]] bool isDrained() const;
    /// Whether this is the call that is to fail.
    bool fails(HidCall call);
    std::vector<Bytes> answersTo(const Bytes& report, std::unique_lock<std::mutex>& lock);

    template <typename Value>
    void set(Value& member, Value value) {
        const std::lock_guard<std::mutex> lock(mutex);
        member = std::move(value);
        changed.notify_all();
    }
    template <typename Value>
    Value get(const Value& member) const {
        const std::lock_guard<std::mutex> lock(mutex);
        return member;
    }

    template <typename Condition>
    bool waitUntil(Condition condition, int limitMs = generousLimitMs) const;

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    std::vector<ScriptedDevice> devices;
    std::deque<ExpectedWrite> script;
    bool scripted = false;
    std::function<std::vector<Bytes>(const Bytes&)> responder;
    Recorder callRecorder;
    /// Nothing stands for a read that fails.
    std::deque<std::optional<Bytes>> input;
    std::optional<Bytes> endlessInput;
    bool writesSettle = false;
    std::chrono::microseconds maxReadTime{5000};
    HidCall failingCall = HidCall::Init;
    size_t callsUntilFailure = 0;
    bool nthFailed = false;
    bool bearsLittle = false;
    size_t callsInside = 0;
    std::vector<Bytes> written;
    std::optional<int> writingResult;
    bool readingFails = false;
    bool readingFailsBehindAnswers = false;
    std::list<OpenDevice> opened;
    size_t reads = 0;
    size_t enumerations = 0;
    size_t listsOut = 0;
    size_t openingListsOut = 0;
    size_t initialised = 0;
    size_t exited = 0;
    size_t readLength = 0;
    int readTimeoutMs = 0;
    std::string lastOpenedPath;
};

/// Bytes as hexadecimal text, sixteen to a line, trailing zeros folded.
std::string hexDump(const Bytes& bytes);
/// The same in one line; of a byte that follows itself often, once and how often.
std::string hexLine(const Bytes& bytes);

} // namespace test_support
