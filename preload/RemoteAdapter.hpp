// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>

#include <pthread.h>

namespace preload {

/// An adapter behind a socket, as hidapi's functions use it. Any thread may call.
///
/// Writing and reading go over connections of their own, so that a thread that waits for a report
/// keeps nobody from writing. Results are hidapi's: a number of bytes, or -1 for an error.
struct RemoteAdapter {
    RemoteAdapter* next;
    /// Of the socket, and of the adapter there.
    unsigned socketNumber;
    unsigned adapterNumber;
    pthread_mutex_t writing;
    pthread_mutex_t reading;
    /// -1 while closed.
    int writer;
    int reader;
    /// Asked for, and not answered yet: a thread was cancelled while it waited.
    bool isReportDue;
};

/// The adapter with these numbers, which is always the same object. It is never destroyed: a thread
/// may still be reading while the program ends. Null without memory.
RemoteAdapter* adapterWith(unsigned socketNumber, unsigned adapterNumber);

/// Whether that object exists: a program may call with a handle that never was one.
bool isAdapter(const RemoteAdapter* adapter);

/// Whether this process has one open.
bool isAnyAdapterOpen();

bool openAdapter(RemoteAdapter& adapter);
void closeAdapter(RemoteAdapter& adapter);
bool writeReport(RemoteAdapter& adapter, const uint8_t* data, size_t size);
int readReport(RemoteAdapter& adapter, uint8_t* data, size_t size, int milliseconds);

// Around fork: a child has no adapter open, whatever its parent's threads were doing.
void lockAdapters();
void unlockAdapters();
void forgetAdapters();

} // namespace preload
