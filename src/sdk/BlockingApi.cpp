// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/BlockingApi.hpp"

#include <veltrasdk/result.h>

BlockingApi::BlockingApi(int timeout) : timeoutMs(timeout) {}

void BlockingApi::respond(ResponseFrame response) {
    const std::lock_guard<std::mutex> lock(mutex);
    response.copyTo(lastResponse);
    responseReceived = true;
    responseArrived.notify_one();
}

uint16_t BlockingApi::await(Judge judge) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!waitFor(responseArrived, mutex, timeoutMs, [this] { return responseReceived; })) {
        return ResultCode_NoResponse;
    }
    responseReceived = false;
    return judge(ResponseFrame(lastResponse));
}

uint16_t BlockingApi::transact(TransactionIds& ids, SendRequest sendRequest, Judge judge) {
    const uint16_t sent = sendRequest(ids.next());
    return sent == ResultCode_Success ? await(judge) : sent;
}
