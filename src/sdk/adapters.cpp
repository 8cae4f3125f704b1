#include <veltrasdk/VeltraSDK.hpp>

#include "driver/Hidapi.hpp"
#include "driver/adapters.hpp"

std::vector<VeltraSDK_AdapterInfo> VeltraSDK::adapters() {
    return pluggedInAdapters();
}

bool VeltraSDK::shareHidapi() {
    return Hidapi::share();
}
