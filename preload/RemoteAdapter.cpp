// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/RemoteAdapter.hpp"

#include "preload/sockets.hpp"
#include "socket/Channel.hpp"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>

namespace preload {

namespace {

using namespace virtual_adapter;

constexpr size_t bufferSize = messageHead + 1 + maxReportSize;
static_assert(bufferSize >= messageHead + maxTextSize, "a notice fits in as well");

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): they have a lock.
pthread_mutex_t listLock = PTHREAD_MUTEX_INITIALIZER;
/// Only ever longer, so that looking for one needs no lock.
RemoteAdapter* adapters = nullptr;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

RemoteAdapter* firstAdapter() {
    // What std::atomic is checked with needs a C++ runtime.
    return __atomic_load_n(&adapters, __ATOMIC_ACQUIRE);
}

/// Not for what may wait long: the thread cannot be cancelled meanwhile.
class Locked {
public:
    explicit Locked(pthread_mutex_t& locked) : mutex(locked) {
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancelState);
        pthread_mutex_lock(&mutex);
    }
    ~Locked() {
        pthread_mutex_unlock(&mutex);
        pthread_setcancelstate(cancelState, nullptr);
    }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    pthread_mutex_t& mutex;
    int cancelState = PTHREAD_CANCEL_ENABLE;
};

void unlock(void* mutex) {
    pthread_mutex_unlock(static_cast<pthread_mutex_t*>(mutex));
}

#ifdef __SANITIZE_THREAD__
// The thread sanitizer of GCC 12 does not see pthread_mutex_clocklock; libstdc++ avoids it there
// too.
constexpr clockid_t lockClock = CLOCK_REALTIME;

int lockUntil(pthread_mutex_t& mutex, const timespec& until) {
    return pthread_mutex_timedlock(&mutex, &until);
}
#else
constexpr clockid_t lockClock = CLOCK_MONOTONIC;

int lockUntil(pthread_mutex_t& mutex, const timespec& until) {
    return pthread_mutex_clocklock(&mutex, lockClock, &until);
}
#endif

/// Waits for its turn as long as hidapi would wait for a report.
bool lockWithin(pthread_mutex_t& mutex, int milliseconds) {
    if (pthread_mutex_trylock(&mutex) == 0) {
        return true;
    }
    if (milliseconds < 0) {
        return pthread_mutex_lock(&mutex) == 0;
    }
    timespec until{};
    clock_gettime(lockClock, &until);
    constexpr long perSecond = 1'000'000'000;
    const long nanoseconds = until.tv_nsec + milliseconds % 1000 * 1'000'000L;
    until.tv_sec += milliseconds / 1000 + nanoseconds / perSecond;
    until.tv_nsec = nanoseconds % perSecond;
    return lockUntil(mutex, until) == 0;
}

void closeSocket(int& socket) {
    if (socket >= 0) {
        close(socket);
        socket = -1;
    }
}

/// Sends @p message and waits for the reply, whose first byte is an outcome.
bool ask(int socket, ClientMessage& message, ReplyKind kind, uint8_t* buffer, Reply& reply) {
    return socket >= 0 && sendMessage(socket, message) &&
           receiveReply(socket, kind, buffer, bufferSize, reply);
}

bool isDone(ByteReader& reply) {
    return reply.u8() == static_cast<uint8_t>(Outcome::Done) && !reply.overran();
}

/// Opens over two new connections; leaves them to the caller, also when it fails.
bool openOver(int writer, int reader, unsigned adapterNumber) {
    uint8_t buffer[bufferSize];
    Reply reply;
    ClientMessage open(ClientMessageKind::Open);
    open.u8(static_cast<uint8_t>(adapterNumber));
    if (!ask(writer, open, ReplyKind::Opened, buffer, reply)) {
        return false;
    }
    ByteReader opened = reply.reader();
    if (!isDone(opened)) {
        return false;
    }
    ClientMessage join(ClientMessageKind::Join);
    join.u32(opened.u32());
    if (opened.overran() || !ask(reader, join, ReplyKind::Joined, buffer, reply)) {
        return false;
    }
    ByteReader joined = reply.reader();
    return isDone(joined);
}

/// What hid_read_timeout returns, the adapter's reading lock held.
int readLocked(RemoteAdapter& adapter, uint8_t* data, size_t size, int milliseconds) {
    uint8_t buffer[bufferSize];
    for (;;) {
        const bool isOld = adapter.isReportDue;
        if (adapter.reader < 0) {
            return -1;
        }
        ClientMessage read(ClientMessageKind::Read);
        read.u32(static_cast<uint32_t>(milliseconds));
        Reply reply;
        adapter.isReportDue = true;
        if ((!isOld && !sendMessage(adapter.reader, read)) ||
            !receiveReply(adapter.reader, ReplyKind::Report, buffer, sizeof buffer, reply)) {
            return -1;
        }
        adapter.isReportDue = false;
        ByteReader report = reply.reader();
        const uint8_t outcome = report.u8();
        if (report.overran()) {
            return -1;
        }
        if (outcome == static_cast<uint8_t>(Outcome::Done)) {
            const size_t count = size < report.remaining() ? size : report.remaining();
            std::memcpy(data, report.position(), count);
            return static_cast<int>(count);
        }
        // That of a read that was cancelled says nothing about this one's time.
        if (outcome != static_cast<uint8_t>(Outcome::NothingYet)) {
            return -1;
        }
        if (!isOld) {
            return 0;
        }
    }
}

} // namespace

RemoteAdapter* adapterWith(unsigned socketNumber, unsigned adapterNumber) {
    const Locked lock(listLock);
    for (RemoteAdapter* each = firstAdapter(); each != nullptr; each = each->next) {
        if (each->socketNumber == socketNumber && each->adapterNumber == adapterNumber) {
            return each;
        }
    }
    auto* const adapter = static_cast<RemoteAdapter*>(std::calloc(1, sizeof(RemoteAdapter)));
    if (adapter != nullptr) {
        adapter->next = adapters;
        adapter->socketNumber = socketNumber;
        adapter->adapterNumber = adapterNumber;
        pthread_mutex_init(&adapter->writing, nullptr);
        pthread_mutex_init(&adapter->reading, nullptr);
        adapter->writer = -1;
        adapter->reader = -1;
        __atomic_store_n(&adapters, adapter, __ATOMIC_RELEASE);
    }
    return adapter;
}

bool isAdapter(const RemoteAdapter* adapter) {
    const RemoteAdapter* each = firstAdapter();
    while (each != nullptr && each != adapter) {
        each = each->next;
    }
    return each != nullptr;
}

bool isAnyAdapterOpen() {
    for (RemoteAdapter* each = firstAdapter(); each != nullptr; each = each->next) {
        const Locked writing(each->writing);
        if (each->writer >= 0) {
            return true;
        }
    }
    return false;
}

bool openAdapter(RemoteAdapter& adapter) {
    const Locked writing(adapter.writing);
    char path[maxSocketPath];
    if (adapter.writer >= 0 || !socketPath(adapter.socketNumber, path)) {
        return false;
    }
    int writer = greetAdapter(path);
    int reader = greetAdapter(path);
    if (!openOver(writer, reader, adapter.adapterNumber)) {
        closeSocket(writer);
        closeSocket(reader);
        return false;
    }
    const Locked reading(adapter.reading);
    adapter.writer = writer;
    adapter.reader = reader;
    adapter.isReportDue = false;
    return true;
}

void closeAdapter(RemoteAdapter& adapter) {
    const Locked writing(adapter.writing);
    uint8_t buffer[bufferSize];
    Reply reply;
    ClientMessage message(ClientMessageKind::Close);
    // Ends a read that waits; when it returns, others can open the adapter.
    ask(adapter.writer, message, ReplyKind::Closed, buffer, reply);
    closeSocket(adapter.writer);
    const Locked reading(adapter.reading);
    closeSocket(adapter.reader);
}

bool writeReport(RemoteAdapter& adapter, const uint8_t* data, size_t size) {
    if (size > maxWriteSize) {
        return false;
    }
    uint8_t buffer[bufferSize];
    Reply reply;
    ClientMessage message(ClientMessageKind::Write);
    message.bytes(data, size);
    const Locked writing(adapter.writing);
    if (!ask(adapter.writer, message, ReplyKind::Written, buffer, reply)) {
        return false;
    }
    ByteReader outcome = reply.reader();
    return isDone(outcome);
}

int readReport(RemoteAdapter& adapter, uint8_t* data, size_t size, int milliseconds) {
    if (!lockWithin(adapter.reading, milliseconds)) {
        return 0;
    }
    int result = -1;
    pthread_cleanup_push(unlock, &adapter.reading);
    result = readLocked(adapter, data, size, milliseconds);
    pthread_cleanup_pop(1);
    return result;
}

void lockAdapters() {
    pthread_mutex_lock(&listLock);
}

void unlockAdapters() {
    pthread_mutex_unlock(&listLock);
}

void forgetAdapters() {
    for (RemoteAdapter* each = firstAdapter(); each != nullptr; each = each->next) {
        // A thread that is not here may hold them.
        pthread_mutex_init(&each->writing, nullptr);
        pthread_mutex_init(&each->reading, nullptr);
        closeSocket(each->writer);
        closeSocket(each->reader);
    }
    pthread_mutex_unlock(&listLock);
}

} // namespace preload
