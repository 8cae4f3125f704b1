// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Objects with less and less of what a process may have: each says, as the contract has it, that it
// cannot; and the same object works once there is enough.
#include "support.h"

#include <veltrasdk/result.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <new>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

constexpr unsigned watchSeconds = 60;
constexpr int timeoutMs = 10000;
constexpr size_t queueSize = size_t{1} << 20U;

constexpr rlim_t memoryStep = rlim_t{32} << 10U;
constexpr size_t smallStack = size_t{512} << 10U;
/// Of the heap. The library's own thread needs little more: what it lacks ends the process, as the
/// contract has it.
constexpr size_t spareHeap = size_t{32} << 10U;
/// So large that none fits into what is left for everything else.
constexpr size_t largeStack = size_t{256} << 20U;
constexpr rlim_t roomBesideStacks = rlim_t{32} << 20U;

enum Outcome {
    Worked,
    NotConnected,
    NeverConnected, // libusb looks for devices when hidapi is initialised: only a new object works
    NoThread,
    NoMemory,
    NoQueue,
    Unanswered
};

struct Limit {
    __rlimit_resource resource;
    rlim_t lowered;
};

/// A long request too, whose answer, as the adapter is not set up for it, is its refusal.
bool answers(VeltraSDK_Handle* handle) {
    static const std::array<uint8_t, 60000> message{};
    const auto sent =
        static_cast<uint16_t>(VeltraSDK_UartSendMessage(handle, message.data(), message.size()));
    return sent != ResultCode_NoResponse && sent != ResultCode_NotConnected &&
           VeltraSDK_GpioSetVoltage(handle, 3300, true) == 0;
}

/// Nothing is thrown, whatever is missing: else the process ends here.
bool opensQueue(VeltraSDK_Handle* handle) noexcept {
    return VeltraSDK_OpenNotificationQueue(handle, queueSize) >= 0;
}

/// Makes the object where there is none yet.
Outcome live(VeltraSDK_Handle*& handle) {
    try {
        if (handle == nullptr) {
            handle = VeltraSDK_Create(timeoutMs);
            VeltraSDK_SetStrict(handle, true);
        }
        if (!VeltraSDK_Connect(handle, nullptr)) {
            return NotConnected;
        }
        if (!answers(handle)) {
            return Unanswered;
        }
        return opensQueue(handle) ? Worked : NoQueue;
    } catch (const std::bad_alloc&) {
        return NoMemory;
    } catch (const std::system_error&) {
        return NoThread;
    }
}

int liveWith(Limit limit) {
    alarm(watchSeconds);
    rlimit enough{};
    getrlimit(limit.resource, &enough);
    const rlimit little{limit.lowered, enough.rlim_max};
    VeltraSDK_Handle* handle = nullptr;
    setrlimit(limit.resource, &little);
    const Outcome outcome = live(handle);
    setrlimit(limit.resource, &enough);
    bool worksNow = outcome == Worked || live(handle) == Worked;
    VeltraSDK_Destroy(handle);
    if (worksNow || outcome != NotConnected) {
        return worksNow ? outcome : Unanswered;
    }
    handle = nullptr;
    worksNow = live(handle) == Worked;
    VeltraSDK_Destroy(handle);
    return worksNow ? NeverConnected : Unanswered;
}

rlim_t addressSpace() {
    size_t pages = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> memory(
        std::fopen("/proc/self/statm", "r"), std::fclose);
    if (memory == nullptr || std::fscanf(memory.get(), "%zu", &pages) != 1) {
        fail("cannot read /proc/self/statm");
    }
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

/// Threads get stacks of this size, and all memory that is not theirs comes from one heap.
void prepareMemory(size_t stack) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, stack);
    pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
    mallopt(M_ARENA_MAX, 1);
    std::free(std::malloc(spareHeap));
}

Limit descriptors(unsigned count) {
    return {RLIMIT_NOFILE, count};
}

Limit memory(unsigned count) {
    prepareMemory(smallStack);
    return {RLIMIT_AS, addressSpace() + count * memoryStep};
}

/// No limit of threads holds for root, but none starts without its stack.
Limit threads(unsigned count) {
    prepareMemory(largeStack);
    return {RLIMIT_AS, addressSpace() + roomBesideStacks + count * largeStack};
}

void run(unsigned long highest, const char* what, Limit (*limitOf)(unsigned)) {
    std::array<unsigned, Unanswered> came{};
    const double began = now();
    for (unsigned count = 0; count <= highest; ++count) {
        // Before there is an object, as the contract has it.
        const pid_t child = fork();
        if (child == 0) {
            _exit(liveWith(limitOf(count)));
        }
        int status = -1;
        waitpid(child, &status, 0);
        if (!WIFEXITED(status)) {
            fail("with %u%s: signal %d", count, what, WTERMSIG(status));
        }
        if (WEXITSTATUS(status) >= Unanswered) {
            fail("with %u%s: status %d", count, what, WEXITSTATUS(status));
        }
        ++came.at(static_cast<size_t>(WEXITSTATUS(status)));
    }
    std::printf(
        "%.0f s|0 to %lu%s: %u could not connect, %u had no thread, %u no memory, %u no queue: "
        "they worked once there was enough, %u of them as new objects; %u worked at once\n",
        now() - began, highest, what, came[NotConnected] + came[NeverConnected], came[NoThread],
        came[NoMemory], came[NoQueue], came[NeverConnected], came[Worked]);
}

} // namespace

void runDescriptors(unsigned long highest) {
    run(highest, " descriptors", descriptors);
}

void runMemory(unsigned long highest) {
    run(highest, " times 32 kB of memory", memory);
}

void runThreads(unsigned long highest) {
    run(highest, " more threads", threads);
}
