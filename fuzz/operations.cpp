// Every operation of the class or of a C handle, with any arguments, over an adapter that answers
// with any reports.
#include "operations.hpp"

#include "HostileHid.hpp"
#include "consume.hpp"

using fuzzing::HostileHid;
using fuzzing::Input;

namespace {

void converseInCxx(HostileHid& hid, Input& input) {
    VeltraSDK sdk(0);
    sdk.onNotification(fuzzing::consume);
    sdk.connect("");
    while (!input.isEmpty()) {
        hid.answerWith(input.bytes());
        fuzzing::callClassOperation(sdk, input);
    }
}

void converseInC(HostileHid& hid, Input& input) {
    VeltraSDK_Handle* const handle = VeltraSDK_Create(0);
    VeltraSDK_onNotification(handle, fuzzing::consumeInC);
    VeltraSDK_Connect(handle, nullptr);
    while (!input.isEmpty()) {
        hid.answerWith(input.bytes());
        fuzzing::callFunction(handle, input);
    }
    VeltraSDK_Destroy(handle);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const bool highSpeed = input.number<bool>();
    const bool inC = input.number<bool>();
    HostileHid hid(highSpeed);
    inC ? converseInC(hid, input) : converseInCxx(hid, input);
    return 0;
}
