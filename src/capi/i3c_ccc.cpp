// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Handle.hpp"
#include "capi/Marshalling.hpp"

namespace {

using Bytes = std::vector<uint8_t>;

/// A query for one value, which is written whenever a response arrived.
template <typename Value, typename Query>
int16_t queryValue(VeltraSDK_Handle* handle, Value* value, const Query& query) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return value == nullptr ? uint16_t{ResultCode_InvalidArgument} : query(sdk, *value);
    });
}

/// A query for bytes and their number, which are written only on success.
template <typename Query>
int16_t queryBytes(VeltraSDK_Handle* handle, uint8_t* buffer, uint8_t* count, const Query& query) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) -> uint16_t {
        if (buffer == nullptr || count == nullptr) {
            return ResultCode_InvalidArgument;
        }
        Bytes& bytes = buffers.received;
        const uint16_t result = query(sdk, bytes);
        if (result == ResultCode_Success) {
            copyOut(bytes, buffer);
            *count = static_cast<uint8_t>(bytes.size() & 0xFFU);
        }
        return result;
    });
}

} // namespace

int16_t VeltraSDK_I3cCccGETPID(VeltraSDK_Handle* handle, uint8_t address, uint8_t* pid) {
    uint8_t count = 0; // the interface hands out no count
    return queryBytes(handle, pid, &count, [&](VeltraSDK& sdk, Bytes& bytes) {
        return sdk.i3cCccGETPID(address, bytes);
    });
}

int16_t VeltraSDK_I3cCccGETBCR(VeltraSDK_Handle* handle, uint8_t address, uint8_t* bcr) {
    return queryValue(handle, bcr, [&](VeltraSDK& sdk, uint8_t& value) {
        return sdk.i3cCccGETBCR(address, value);
    });
}

int16_t VeltraSDK_I3cCccGETDCR(VeltraSDK_Handle* handle, uint8_t address, uint8_t* dcr) {
    return queryValue(handle, dcr, [&](VeltraSDK& sdk, uint8_t& value) {
        return sdk.i3cCccGETDCR(address, value);
    });
}

int16_t VeltraSDK_I3cCccGETMWL(VeltraSDK_Handle* handle, uint8_t address, uint16_t* mwl) {
    return queryValue(handle, mwl, [&](VeltraSDK& sdk, uint16_t& value) {
        return sdk.i3cCccGETMWL(address, value);
    });
}

int16_t VeltraSDK_I3cCccGETMRL(VeltraSDK_Handle* handle, uint8_t address, uint16_t* mrl,
                               uint8_t* ibiPayloadSize, uint8_t* hasIbiPayloadSize) {
    return queryValue(handle, mrl, [&](VeltraSDK& sdk, uint16_t& value) {
        if (hasIbiPayloadSize != nullptr) {
            *hasIbiPayloadSize = 0;
        }
        std::optional<uint8_t> size;
        const uint16_t result = sdk.i3cCccGETMRL(address, value, size);
        if (size && ibiPayloadSize != nullptr) {
            *ibiPayloadSize = *size;
        }
        if (size && hasIbiPayloadSize != nullptr) {
            *hasIbiPayloadSize = 1;
        }
        return result;
    });
}

int16_t VeltraSDK_I3cCccGETCAPS(VeltraSDK_Handle* handle, uint8_t address, uint8_t* capabilities,
                                uint8_t* count, bool hasDefiningByte, uint8_t definingByte) {
    return queryBytes(handle, capabilities, count, [&](VeltraSDK& sdk, Bytes& bytes) {
        return sdk.i3cCccGETCAPS(address, bytes, optionalByte(hasDefiningByte, definingByte));
    });
}

int16_t VeltraSDK_I3cCccGETSTATUS(VeltraSDK_Handle* handle, uint8_t address, uint8_t* status,
                                  uint8_t* count, bool hasDefiningByte, uint8_t definingByte) {
    return queryBytes(handle, status, count, [&](VeltraSDK& sdk, Bytes& bytes) {
        return sdk.i3cCccGETSTATUS(address, bytes, optionalByte(hasDefiningByte, definingByte));
    });
}

int16_t VeltraSDK_I3cCccSETMWLDirect(VeltraSDK_Handle* handle, uint8_t address, uint16_t mwl) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.i3cCccSETMWLDirect(address, mwl); });
}

int16_t VeltraSDK_I3cCccSETMWLBroadcast(VeltraSDK_Handle* handle, uint16_t mwl) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.i3cCccSETMWLBroadcast(mwl); });
}

int16_t VeltraSDK_I3cCccSETMRLDirect(VeltraSDK_Handle* handle, uint8_t address, uint16_t mrl,
                                     bool hasIbiPayloadSize, uint8_t ibiPayloadSize) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.i3cCccSETMRLDirect(address, mrl,
                                      optionalByte(hasIbiPayloadSize, ibiPayloadSize));
    });
}

int16_t VeltraSDK_I3cCccSETMRLBroadcast(VeltraSDK_Handle* handle, uint16_t mrl,
                                        bool hasIbiPayloadSize, uint8_t ibiPayloadSize) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.i3cCccSETMRLBroadcast(mrl, optionalByte(hasIbiPayloadSize, ibiPayloadSize));
    });
}

int16_t VeltraSDK_I3cCccSETNEWDA(VeltraSDK_Handle* handle, uint8_t currentAddress,
                                 uint8_t newAddress) {
    return withSdk(handle,
                   [&](VeltraSDK& sdk) { return sdk.i3cCccSETNEWDA(currentAddress, newAddress); });
}

int16_t VeltraSDK_I3cCccSETDASA(VeltraSDK_Handle* handle, uint8_t staticAddress,
                                uint8_t dynamicAddress) {
    return withSdk(
        handle, [&](VeltraSDK& sdk) { return sdk.i3cCccSETDASA(staticAddress, dynamicAddress); });
}

int16_t VeltraSDK_I3cCccSETAASA(VeltraSDK_Handle* handle, const uint8_t* staticAddresses,
                                size_t count) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) {
        return sdk.i3cCccSETAASA(copyIn(buffers.sent, staticAddresses, count));
    });
}

int16_t VeltraSDK_I3cCccENECDirect(VeltraSDK_Handle* handle, uint8_t address, uint8_t events) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.i3cCccENECDirect(address, events); });
}

int16_t VeltraSDK_I3cCccENECBroadcast(VeltraSDK_Handle* handle, uint8_t events) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.i3cCccENECBroadcast(events); });
}

int16_t VeltraSDK_I3cCccDISECDirect(VeltraSDK_Handle* handle, uint8_t address, uint8_t events) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.i3cCccDISECDirect(address, events); });
}

int16_t VeltraSDK_I3cCccDISECBroadcast(VeltraSDK_Handle* handle, uint8_t events) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.i3cCccDISECBroadcast(events); });
}

int16_t VeltraSDK_I3cCccRSTACTDirect(VeltraSDK_Handle* handle, uint8_t address,
                                     I3cTargetResetDefByte definingByte,
                                     I3cTransferDirection direction, uint8_t* reply) {
    return withSdk(handle, [&](VeltraSDK& sdk) -> uint16_t {
        if (direction == I3cTransferDirection_Read && reply == nullptr) {
            return ResultCode_InvalidArgument;
        }
        return sdk.i3cCccRSTACTDirect(address, definingByte, direction, reply);
    });
}

int16_t VeltraSDK_I3cCccRSTACTBroadcast(VeltraSDK_Handle* handle,
                                        I3cTargetResetDefByte definingByte) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.i3cCccRSTACTBroadcast(definingByte); });
}

int16_t VeltraSDK_I3cCccRSTDAA(VeltraSDK_Handle* handle) {
    return withSdk(handle, [](VeltraSDK& sdk) { return sdk.i3cCccRSTDAA(); });
}

int16_t VeltraSDK_I3cCccENTDAA(VeltraSDK_Handle* handle) {
    return withSdk(handle, [](VeltraSDK& sdk) { return sdk.i3cCccENTDAA(); });
}

int16_t VeltraSDK_I3cCccTransfer(VeltraSDK_Handle* handle, uint8_t address,
                                 I3cTransferDirection direction, I3cTransferMode mode,
                                 bool optionFlag, I3cCccType type, uint8_t length, CCC code,
                                 uint8_t definingByte, const uint8_t* data, uint32_t dataLength,
                                 uint8_t* reply, uint8_t capacity, uint8_t* replyLength) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) -> uint16_t {
        if (isMissing(data, dataLength) || isMissing(reply, capacity) ||
            isMissing(replyLength, capacity)) {
            return ResultCode_InvalidArgument;
        }
        const Bytes& received = buffers.received;
        const uint16_t result = sdk.i3cCccTransfer(
            address, direction, mode, optionFlag, type, length, code, definingByte,
            copyIn(buffers.sent, data, dataLength), buffers.received);
        if (result == ResultCode_Success) {
            const size_t stored = std::min(received.size(), size_t{capacity});
            std::copy_n(received.begin(), stored, reply);
            if (replyLength != nullptr) {
                *replyLength = static_cast<uint8_t>(stored);
            }
        }
        return result;
    });
}
