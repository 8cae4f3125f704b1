// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/SdkTest.hpp"

#include <veltrasdk/VeltraSDK.hpp>
#include <veltrasdk/veltrasdk.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace test_support {

/// The library's two faces with the same words, for tests that hold for both. Objects have a
/// time-out of 0: where writes settle, the response is there in time.
struct ClassInterface {
    using Object = std::unique_ptr<VeltraSDK>;
    struct Operation {
        std::string name;
        std::function<uint16_t(const Object&)> run;
    };

    static Object create() { return std::make_unique<VeltraSDK>(0); }
    static bool connect(const Object& sdk) { return sdk->connect(""); }
    static bool connectWithSerialNumber(const Object& sdk);
    static void disconnect(const Object& sdk) { sdk->disconnect(); }
    static void onNotification(const Object& sdk, void (*handler)(const Notification*));
    /// At least one operation of every family.
    static const std::vector<Operation>& operations();
};

struct FlatInterface {
    using Object = OwnedHandle;
    struct Operation {
        std::string name;
        std::function<int16_t(const Object&)> run;
    };

    static Object create() { return Object(VeltraSDK_Create(0)); }
    static bool connect(const Object& handle) { return VeltraSDK_Connect(handle.get(), nullptr); }
    static bool connectWithSerialNumber(const Object& handle);
    static void disconnect(const Object& handle) { VeltraSDK_Disconnect(handle.get()); }
    static void onNotification(const Object& handle, void (*handler)(const Notification*)) {
        VeltraSDK_onNotification(handle.get(), handler);
    }
    static const std::vector<Operation>& operations();
};

/// The same in strict mode, where a link that has had a read error is closed before it is of use.
template <typename Interface>
struct Strict;

template <>
struct Strict<ClassInterface> : ClassInterface {
    static Object create() {
        Object sdk = ClassInterface::create();
        sdk->setStrict(true);
        return sdk;
    }
    static bool connect(const Object& sdk) {
        if (!sdk->isConnected()) {
            sdk->disconnect();
        }
        return ClassInterface::connect(sdk);
    }
};

template <>
struct Strict<FlatInterface> : FlatInterface {
    static Object create() {
        Object handle = FlatInterface::create();
        VeltraSDK_SetStrict(handle.get(), true);
        return handle;
    }
    static bool connect(const Object& handle) {
        if (!VeltraSDK_IsConnected(handle.get())) {
            VeltraSDK_Disconnect(handle.get());
        }
        return FlatInterface::connect(handle);
    }
};

} // namespace test_support
