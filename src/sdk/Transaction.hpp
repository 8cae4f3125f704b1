#pragma once

#include <veltrasdk/VeltraAsyncSDK.hpp>
#include <veltrasdk/VeltraSDK.hpp>

#include "protocol/ResponseFrame.hpp"
#include "sdk/BlockingApi.hpp"

/// The pattern of every blocking operation. @p encode takes a transaction identifier and returns
/// the encoder's result code; @p decode takes the response, whatever its status, and returns the
/// operation's result code. Without a response nothing is decoded.
template <typename Encode, typename Decode>
uint16_t VeltraSDK::exchange(const Encode& encode, const Decode& decode) {
    uint16_t encoded = ResultCode_Success;
    const auto sendRequest = [&] {
        encoded = encode(generateTransactionId());
        return encoded == ResultCode_Success;
    };
    // By reference: a function object of this size would be allocated.
    if (!blockingApi->execute(std::cref(sendRequest))) {
        return encoded != ResultCode_Success ? encoded : uint16_t{ResultCode_NoResponse};
    }
    const std::lock_guard<std::mutex> lock(responseMutex);
    return decode(ResponseFrame(lastResponse));
}

/// An exchange whose result is the response's status.
template <typename Encode, typename Decode>
uint16_t VeltraSDK::transact(const Encode& encode, const Decode& decode) {
    return exchange(encode, [&](const ResponseFrame& response) {
        decode(response);
        return response.status();
    });
}

/// A transaction whose response carries nothing but the status.
template <typename Encode>
uint16_t VeltraSDK::transact(const Encode& encode) {
    return transact(encode, [](const ResponseFrame&) {});
}
