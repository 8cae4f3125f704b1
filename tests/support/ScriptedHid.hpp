#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <string>
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

/// A stand-in for hidapi: defines the eight functions that the library calls, serves devices and
/// reports, records what it is told, and fails on demand. One exists at a time; its destructor
/// reports whatever was opened and not closed, and whoever still reads.
///
/// A conversation is a list of expected writes, each with the input reports that answer it. A write
/// that differs from the expected one fails the test and shows the bytes of both.
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

    /// Answers every write that no script expects with what @p responder makes of it.
    void respond(std::function<std::vector<Bytes>(const Bytes& report)> responder);

    /// Makes an input report readable now, also before a device is open. Where several are open,
    /// one of them reads it; an answer is read by the device that was written to.
    void deliver(Bytes report);
    /// Makes every read that finds nothing else return @p report at once; nothing ends that.
    void deliverEndlessly(std::optional<Bytes> report);

    void failOpening(bool fail);
    /// What hid_write returns instead of the number of bytes; nothing for success.
    void failWriting(std::optional<int> result);
    /// Whether hid_read_timeout returns -1 at once when it finds nothing to read, as it does after
    /// an unplug.
    void failReading(bool fail);

    /// The writes so far, report identifiers included.
    [[nodiscard]] std::vector<Bytes> writes() const;
    [[nodiscard]] size_t readCalls() const;
    [[nodiscard]] size_t enumerateCalls() const;
    /// The path of the last device opened.
    [[nodiscard]] std::string openedPath() const;
    /// How many enumerations were not freed when hid_open_path was last called.
    [[nodiscard]] size_t listsOutAtOpening() const;
    [[nodiscard]] size_t openDevices() const;
    /// How many threads have read and not ended yet. A thread that has ended calls nobody back.
    [[nodiscard]] static size_t readingThreads();
    /// How often hid_init and hid_exit were called.
    [[nodiscard]] size_t initCalls() const;
    [[nodiscard]] size_t exitCalls() const;
    /// The arguments of the last read.
    [[nodiscard]] size_t lastReadLength() const;
    [[nodiscard]] int lastReadTimeout() const;

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
    };

    /// The open device behind a pointer that the library hands back, or null and a failed test.
    OpenDevice* find(const void* device);
    [[nodiscard]] bool isReadable(const OpenDevice& device) const;

    template <typename Condition>
    bool waitUntil(Condition condition, int limitMs = generousLimitMs) const;

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    std::vector<ScriptedDevice> devices;
    std::deque<ExpectedWrite> script;
    bool scripted = false;
    std::function<std::vector<Bytes>(const Bytes&)> responder;
    std::deque<Bytes> input;
    std::optional<Bytes> endlessInput;
    std::vector<Bytes> written;
    bool openingFails = false;
    std::optional<int> writingResult;
    bool readingFails = false;
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

} // namespace test_support
