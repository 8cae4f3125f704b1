// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Every operation of the class or of a C handle, with any arguments, over an adapter that answers
// with any reports.
#include "operations.hpp"

#include "HostileAdapter.hpp"
#include "consume.hpp"

using fuzzing::HostileAdapter;
using fuzzing::Input;

namespace {

void converseInCxx(HostileAdapter& adapter, Input& input) {
    VeltraSDK sdk(0);
    sdk.onNotification(fuzzing::consume);
    sdk.connect("");
    while (!input.isEmpty()) {
        adapter.answerWith(input.bytes());
        fuzzing::callClassOperation(sdk, input);
    }
}

void converseInC(HostileAdapter& adapter, Input& input) {
    VeltraSDK_Handle* const handle = VeltraSDK_Create(0);
    VeltraSDK_onNotification(handle, fuzzing::consumeInC);
    VeltraSDK_Connect(handle, nullptr);
    while (!input.isEmpty()) {
        adapter.answerWith(input.bytes());
        fuzzing::callFunction(handle, input);
    }
    VeltraSDK_Destroy(handle);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const bool highSpeed = input.number<bool>();
    const bool inC = input.number<bool>();
    HostileAdapter adapter(highSpeed);
    inC ? converseInC(adapter, input) : converseInCxx(adapter, input);
    return 0;
}
