// Notification records and frames of any kind, size and content, decoded in C and in C++.
#include "Input.hpp"
#include "consume.hpp"

#include "capi/Handle.hpp"
#include "support/ScriptedHid.hpp"

#include <algorithm>

using fuzzing::Bytes;
using fuzzing::Input;

namespace {

/// Kept for the whole run: what routes frames has no state of its own.
struct Receivers {
    test_support::ScriptedHid hid;
    VeltraSDK sdk{0};
    VeltraSDK_Handle* handle = VeltraSDK_Create(0);

    Receivers() {
        sdk.onNotification(fuzzing::consume);
        VeltraSDK_onNotification(handle, fuzzing::consumeInC);
    }
    ~Receivers() { VeltraSDK_Destroy(handle); }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Receivers receivers;
    Input input(data, size);

    Notification record{};
    record.kind = input.number<NotificationKind>();
    // Exactly as many bytes as the record has: reading behind them is a finding.
    const Bytes frame(input.twoPartBytes());
    record.data = frame.data();
    record.size = frame.size();
    fuzzing::consume(record);

    // Routed to the handlers if its identifier is 0.
    receivers.sdk.handleResponse(frame);
    receivers.handle->sdk->handleResponse(frame);
    return 0;
}
