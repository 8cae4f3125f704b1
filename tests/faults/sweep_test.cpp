// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What can fail beneath the library fails, one point after the other, until nothing is left to
// fail; each time the object must be of use afterwards and nothing may be left behind.
#include "faults/FailingAllocation.hpp"
#include "faults/Interfaces.hpp"
#include "support/ThreadStart.hpp"

#include <atomic>
#include <cerrno>
#include <iostream>
#include <new>
#include <optional>
#include <system_error>

using namespace test_support;

namespace {

const Bytes gpioNotification{0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x05};

std::atomic<size_t> notificationsSeen{0};

void countNotification(const Notification* notification) {
    notificationsSeen += notification->kind == NotificationKind_Gpio ? 1 : 0;
}

/// Answers every request with success and with bytes wherever an operation looks for some.
class Adapter {
public:
    std::vector<Bytes> operator()(const Bytes& report) {
        constexpr size_t packet = 1;
        constexpr size_t message = packet + 2;
        if ((report[packet] & 1U) != 0) {
            header.assign(report.begin() + message, report.begin() + message + 4);
        }
        if ((report[packet] & 2U) == 0) {
            return {};
        }
        Bytes response = header;
        response.insert(response.end(), {0x00, 0x00, 0x04, 0x00, 0x04, 0x04});
        response.resize(56, 0x11);
        return fullSpeed.inputs(response);
    }

private:
    Bytes header;
};

template <typename Interface>
constexpr bool isStrict =
    !std::is_same_v<Interface, ClassInterface> && !std::is_same_v<Interface, FlatInterface>;

template <typename Interface>
class FaultSweep : public testing::Test {
protected:
    using Object = typename Interface::Object;

    // The list lives as long as the program: it must not look like a leak of the first sweep.
    FaultSweep() { Interface::operations(); }

    /// A machine with one adapter. What it still holds when it goes fails the test.
    struct Machine {
        Machine() {
            hid.attach({"3-1.4.2:1.0-longer-than-a-string-keeps-inside", vendorId,
                        fullSpeed.productId,
                        L"VA-0001-with-more-characters-than-a-string-keeps-inside"});
            hid.respond(Adapter());
            hid.settleWrites(true);
        }
        ScriptedHid hid;
    };

    static Object connected() {
        Object object = Interface::create();
        EXPECT_TRUE(Interface::connect(object));
        return object;
    }

    static auto identify(const Object& object) { return Interface::operations()[0].run(object); }

    static void expectOfUse(Object& object) {
        if (object == nullptr) {
            object = Interface::create();
        }
        EXPECT_TRUE(Interface::connect(object));
        EXPECT_EQ(identify(object), 0);
        Interface::onNotification(object, countNotification);
        const size_t seen = notificationsSeen;
        ScriptedHid::instance().deliver(fullSpeed.input(gpioNotification));
        EXPECT_TRUE(ScriptedHid::instance().waitUntilDrained());
        EXPECT_EQ(notificationsSeen, seen + 1);
    }

    /// A way of connecting that must not leave the adapter open behind an exception: a later call
    /// that names another adapter would find it.
    template <typename Connect>
    static auto openingNothingOnFailure(Connect connect) {
        return [connect](const Object& object) {
            try {
                connect(object);
            } catch (...) {
                EXPECT_EQ(ScriptedHid::instance().openDevices(), 0U);
                throw;
            }
        };
    }

    /// Fails the first, the second, ... allocation that @p step makes on this thread, until it
    /// makes fewer. @p prepare makes the object that the step is given.
    template <typename Prepare, typename Step>
    static void sweepAllocations(const std::string& name, const Prepare& prepare,
                                 const Step& step) {
        size_t position = 0;
        bool happened = true;
        while (happened) {
            ++position;
            SCOPED_TRACE(name + ": allocation " + std::to_string(position) + " fails");
            const size_t liveBefore = liveAllocations();
            {
                const Machine machine;
                Object object = prepare();
                bool threw = false;
                {
                    const FailingAllocation failing(position);
                    try {
                        step(object);
                    } catch (const std::bad_alloc&) {
                        threw = true;
                    }
                    happened = failing.happened();
                }
                EXPECT_EQ(threw, happened) << "the caller learns of the failure";
                expectOfUse(object);
                object.reset();
                EXPECT_EQ(machine.hid.openDevices(), 0U);
            }
            EXPECT_EQ(liveAllocations(), liveBefore) << "memory was not released";
            ASSERT_FALSE(testing::Test::HasFailure());
        }
        std::cout << "[   swept  ] " << name << ": " << position - 1 << " allocations\n";
    }

    /// Fails the first, the second, ... call of one function of hidapi in an object's whole life.
    static void sweepCalls(const std::string& name, HidCall call) {
        size_t position = 0;
        bool happened = true;
        while (happened) {
            ++position;
            SCOPED_TRACE(name + ": call " + std::to_string(position) + " fails");
            const size_t liveBefore = liveAllocations();
            {
                Machine machine;
                machine.hid.failNth(call, position);
                {
                    Object object = Interface::create();
                    expectLife(object, machine.hid, call);
                    if (machine.hid.nthHasFailed()) {
                        expectOfUse(object);
                    }
                }
                happened = machine.hid.nthHasFailed();
                machine.hid.failNth(call, 0);
                EXPECT_EQ(machine.hid.openDevices(), 0U);
                Object object;
                expectOfUse(object);
            }
            EXPECT_EQ(liveAllocations(), liveBefore) << "memory was not released";
            ASSERT_FALSE(testing::Test::HasFailure());
        }
        std::cout << "[   swept  ] " << name << ": " << position - 1 << " calls\n";
    }

private:
    static void expectLife(const Object& object, const ScriptedHid& hid, HidCall call) {
        const bool preventsConnecting = call == HidCall::Enumerate || call == HidCall::OpenPath;
        const bool isConnected = Interface::connect(object);
        EXPECT_EQ(isConnected, !(preventsConnecting && hid.nthHasFailed()));
        for (const auto& operation : Interface::operations()) {
            const bool failedBefore = hid.nthHasFailed();
            const auto result = operation.run(object);
            if (preventsConnecting && hid.nthHasFailed()) {
                EXPECT_EQ(result, 0x4000) << operation.name;
            } else if (isStrict<Interface> && call == HidCall::ReadTimeout && hid.nthHasFailed()) {
                // Which operation is under way when the read fails is not told.
                EXPECT_TRUE(result == 0x4000 || (!failedBefore && result == 0)) << operation.name;
            } else if (call == HidCall::Write && hid.nthHasFailed() && !failedBefore) {
                const bool waits =
                    isStrict<Interface> || operation.name.find("nterBootMode") == std::string::npos;
                EXPECT_EQ(result, waits ? 0x2000 : 0x0000) << operation.name;
            } else {
                EXPECT_EQ(result, 0x0000) << operation.name;
            }
        }
        Interface::disconnect(object);
    }
};

struct InterfaceName {
    template <typename Interface>
    static std::string GetName(int /*index*/) { // NOLINT(readability-identifier-naming)
        const std::string face = std::is_base_of_v<ClassInterface, Interface> ? "Class" : "CHandle";
        return face + (isStrict<Interface> ? "Strict" : "");
    }
};

using Interfaces =
    testing::Types<ClassInterface, FlatInterface, Strict<ClassInterface>, Strict<FlatInterface>>;
TYPED_TEST_SUITE(FaultSweep, Interfaces, InterfaceName);

TYPED_TEST(FaultSweep, CreationReportsEveryFailingAllocationAndLeavesNothingBehind) {
    this->sweepAllocations(
        "creation", [] { return typename TypeParam::Object(); },
        [](auto& object) { object = TypeParam::create(); });
}

TYPED_TEST(FaultSweep, ConnectingReportsEveryFailingAllocationAndLeavesNothingOpen) {
    this->sweepAllocations("connecting", TypeParam::create,
                           this->openingNothingOnFailure(TypeParam::connect));
    this->sweepAllocations("connecting with a serial number", TypeParam::create,
                           this->openingNothingOnFailure(TypeParam::connectWithSerialNumber));
}

TYPED_TEST(FaultSweep, ConnectingAgainReportsEveryFailingAllocationAndLeavesNothingOpen) {
    this->sweepAllocations(
        "connecting again",
        [&] {
            auto object = this->connected();
            TypeParam::disconnect(object);
            return object;
        },
        this->openingNothingOnFailure(TypeParam::connect));
}

TYPED_TEST(FaultSweep, EveryOperationReportsEveryFailingAllocationAndTheNextOneSucceeds) {
    for (const auto& operation : TypeParam::operations()) {
        this->sweepAllocations(operation.name, this->connected, operation.run);
    }
}

TYPED_TEST(FaultSweep, ListingTheAdaptersReportsEveryFailingAllocation) {
    this->sweepAllocations("listing", this->connected,
                           [](const auto&) { EXPECT_EQ(VeltraSDK_Enumerate(nullptr, 0), 1U); });
}

TYPED_TEST(FaultSweep, InstallingAHandlerReportsEveryFailingAllocation) {
    this->sweepAllocations("installing a handler", TypeParam::create, [](const auto& object) {
        TypeParam::onNotification(object, countNotification);
    });
}

TYPED_TEST(FaultSweep, DisconnectingAndDestroyingAllocateNothing) {
    this->sweepAllocations("disconnecting", this->connected, TypeParam::disconnect);
    this->sweepAllocations("destroying", this->connected, [](auto& object) { object.reset(); });
}

TYPED_TEST(FaultSweep, EveryFailingCallOfHidapiIsSurvived) {
    this->sweepCalls("hid_init", HidCall::Init);
    this->sweepCalls("hid_enumerate", HidCall::Enumerate);
    this->sweepCalls("hid_open_path", HidCall::OpenPath);
    this->sweepCalls("hid_write", HidCall::Write);
    this->sweepCalls("hid_read_timeout", HidCall::ReadTimeout);
    this->sweepCalls("hid_exit", HidCall::Exit);
}

TYPED_TEST(FaultSweep, APollingThreadThatCannotBeStartedLeavesNothingOpen) {
    const typename FaultSweep<TypeParam>::Machine machine;
    auto object = TypeParam::create();
    {
        const ThreadStart never([](const auto&) { return EAGAIN; });
        EXPECT_THROW(TypeParam::connect(object), std::system_error);
    }
    EXPECT_EQ(machine.hid.openDevices(), 0U);
    EXPECT_EQ(this->identify(object), 0x4000);
    this->expectOfUse(object);
}

} // namespace
