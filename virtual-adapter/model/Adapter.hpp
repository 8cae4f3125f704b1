#pragma once

#include "model/Dispatcher.hpp"
#include "model/NotificationQueue.hpp"
#include "model/system.hpp"

#include <string>
#include <vector>

namespace virtual_adapter {

/// A behavioural model of the adapter. It has no input or output of its own, no clock and no
/// thread: the frames it answers are a function of the requests it was given.
class Adapter {
public:
    /// @p modelName and @p serialNumber appear among the adapter's identity strings.
    Adapter(const std::string& modelName, const std::string& serialNumber);

    Adapter(const Adapter&) = delete;
    Adapter& operator=(const Adapter&) = delete;

    /// Carries a request out. Returns the response, unless the request has no whole header, and
    /// behind it the notifications that the request gave rise to.
    std::vector<Frame> handle(const Frame& request);

    [[nodiscard]] bool inBootMode() const { return system.inBootMode(); }

private:
    Dispatcher dispatcher;
    NotificationQueue notifications;
    System system;
};

} // namespace virtual_adapter
