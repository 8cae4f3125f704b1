// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "guest/sendAll.hpp"

#include <sys/socket.h>

#include <cerrno>
#include <cstdint>

namespace guest {

bool sendAll(int socket, iovec* parts, size_t count) {
    msghdr message{};
    message.msg_iov = parts;
    message.msg_iovlen = count;
    while (message.msg_iovlen > 0) {
        const ssize_t result = sendmsg(socket, &message, MSG_NOSIGNAL);
        if (result < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        auto sent = static_cast<size_t>(result);
        while (message.msg_iovlen > 0 && sent >= message.msg_iov->iov_len) {
            sent -= message.msg_iov->iov_len;
            ++message.msg_iov;
            --message.msg_iovlen;
        }
        if (message.msg_iovlen > 0) {
            message.msg_iov->iov_base = static_cast<uint8_t*>(message.msg_iov->iov_base) + sent;
            message.msg_iov->iov_len -= sent;
        }
    }
    return true;
}

} // namespace guest
