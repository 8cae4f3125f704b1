/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief Lets something happen to a virtual adapter, from a test in C or C++.
 *
 * Nothing is linked: the functions are part of the program that includes them. They know the
 * virtual adapter's socket alone, neither the library nor hidapi.
 */
#ifndef VELTRA_VIRTUAL_ADAPTER_TELL_H
#define VELTRA_VIRTUAL_ADAPTER_TELL_H

#include <errno.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

/** @cond What the functions below are made of. */
#ifdef __cplusplus
#define VELTRA_TELL_THREAD_LOCAL thread_local
#define VELTRA_TELL_CAST(type, value) static_cast<type>(value)
#else
#define VELTRA_TELL_THREAD_LOCAL _Thread_local
#define VELTRA_TELL_CAST(type, value) ((type)(value))
#endif

enum { veltraTellTextSize = 1024, veltraTellHelloSize = 11, veltraTellMaxSize = 1 << 18 };

static inline bool veltraTellSend(int connection, const void* data, size_t size) {
    const char* next = VELTRA_TELL_CAST(const char*, data);
    while (size > 0) {
        const ssize_t sent = send(connection, next, size, MSG_NOSIGNAL);
        if (sent > 0) {
            next += sent;
            size -= VELTRA_TELL_CAST(size_t, sent);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

static inline bool veltraTellReceive(int connection, void* data, size_t size) {
    char* next = VELTRA_TELL_CAST(char*, data);
    while (size > 0) {
        const ssize_t received = recv(connection, next, size, 0);
        if (received > 0) {
            next += received;
            size -= VELTRA_TELL_CAST(size_t, received);
        } else if (received == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

/* Stores as much of a text as there is room for, and passes over the rest. */
static inline bool veltraTellReceiveText(int connection, size_t size, char* text) {
    const size_t room = veltraTellTextSize - 1;
    const size_t kept = size < room ? size : room;
    bool received = veltraTellReceive(connection, text, kept);
    text[received ? kept : 0] = '\0';
    for (size_t rest = size - kept; received && rest > 0; --rest) {
        char passedOver = 0;
        received = veltraTellReceive(connection, &passedOver, 1);
    }
    return received;
}

static inline int veltraTellConnect(const char* path) {
    struct sockaddr_un address;
    memset(&address, 0, sizeof address);
    address.sun_family = AF_UNIX;
    if (strlen(path) >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    memcpy(address.sun_path, path, strlen(path));
    const void* const anyAddress = &address;
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connection >= 0 && connect(connection, VELTRA_TELL_CAST(const struct sockaddr*, anyAddress),
                                   sizeof address) != 0) {
        const int error = errno;
        close(connection);
        errno = error;
        return -1;
    }
    return connection;
}

static inline uint8_t veltraTellByte(size_t number, unsigned shift) {
    return VELTRA_TELL_CAST(uint8_t, number >> shift & 0xFF);
}

static inline bool veltraTellAsk(int connection, const char* serialNumber, const char* stimulus) {
    const size_t serialSize = strlen(serialNumber);
    const size_t size = 3 + serialSize + strlen(stimulus);
    if (serialSize > UINT16_MAX || size > veltraTellMaxSize) {
        return false;
    }
    const uint8_t message[veltraTellHelloSize + 7] = {
        /* hello: its size, its kind, the protocol and its version */
        7, 0, 0, 0, 1, 'V', 'V', 'A', 'S', 1, 0,
        /* tell: its size, its kind, how long the serial number is */
        veltraTellByte(size, 0), veltraTellByte(size, 8), veltraTellByte(size, 16), 0, 8,
        veltraTellByte(serialSize, 0), veltraTellByte(serialSize, 8)};
    return veltraTellSend(connection, message, sizeof message) &&
           veltraTellSend(connection, serialNumber, serialSize) &&
           veltraTellSend(connection, stimulus, strlen(stimulus));
}

/* The answer's text, empty when it has been done; false when there is none. */
static inline bool veltraTellAnswer(int connection, char* text) {
    uint8_t head[5];
    while (veltraTellReceive(connection, head, sizeof head)) {
        const uint32_t size = head[0] | head[1] * 0x100U | head[2] * 0x10000U;
        if (head[3] != 0 || size == 0 || size > veltraTellMaxSize ||
            !veltraTellReceiveText(connection, size - 1, text)) {
            return false;
        }
        if (head[4] != 0x90) {
            return head[4] == 0x88 || (head[4] == 0xFF && size > 1);
        }
        fputs(text, stderr); /* what the adapter has to say to people, in front of its answer */
    }
    return false;
}
/** @endcond */

/**
 * @brief Lets something happen to one of the adapters at a socket, and returns when it has.
 *
 * It happens between two requests, never inside one. Any thread may call.
 *
 * @param socketPath the socket, as `veltra-virtual-adapter serve --socket` has it.
 * @param serialNumber which adapter, in UTF-8; empty for the only one at the socket.
 * @param stimulus the words of `veltra-virtual-adapter tell`, in UTF-8, such as "gpio drive 4 1".
 * @return null when it has happened. Else nothing has, and this is why: a text in UTF-8 of at most
 *         1023 bytes, which must not be released and lasts until the thread's next call.
 */
static inline const char* veltraTellAdapter(const char* socketPath, const char* serialNumber,
                                            const char* stimulus) {
    static VELTRA_TELL_THREAD_LOCAL char text[veltraTellTextSize];
    const int connection = veltraTellConnect(socketPath);
    if (connection < 0) {
        snprintf(text, sizeof text, "no adapter at %.107s: %s", socketPath, strerror(errno));
        return text;
    }
    const bool answered =
        veltraTellAsk(connection, serialNumber, stimulus) && veltraTellAnswer(connection, text);
    close(connection);
    if (!answered) {
        snprintf(text, sizeof text, "the adapter at %.107s has ended without an answer",
                 socketPath);
        return text;
    }
    return text[0] == '\0' ? NULL : text;
}

/**
 * @brief Lets something happen to the adapter that this program runs under, and returns when it
 * has.
 *
 * That is the adapter of `veltra-virtual-adapter run`, or of the test framework: the first socket
 * that the environment names in VELTRA_VIRTUAL_ADAPTER_SOCKET. In GoogleTest,
 * `ASSERT_STREQ(veltraTell("gpio drive 4 1"), nullptr)` shows what is wrong.
 *
 * @param stimulus as veltraTellAdapter() takes it.
 * @return as veltraTellAdapter() returns it.
 */
static inline const char* veltraTell(const char* stimulus) {
    struct sockaddr_un address;
    char path[sizeof address.sun_path] = "";
    const char* const sockets = getenv("VELTRA_VIRTUAL_ADAPTER_SOCKET");
    const size_t size = sockets == NULL ? 0 : strcspn(sockets, ":");
    if (size == 0 || size >= sizeof path) {
        return "no adapter is known here: start the program with veltra-virtual-adapter run, or "
               "name a socket to veltraTellAdapter";
    }
    memcpy(path, sockets, size);
    path[size] = '\0';
    return veltraTellAdapter(path, "", stimulus);
}

#undef VELTRA_TELL_CAST
#undef VELTRA_TELL_THREAD_LOCAL

#endif
