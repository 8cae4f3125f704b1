// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include <veltra-virtual-adapter/tell.h>

#include "launch/SocketPlace.hpp"
#include "support/TemporaryDirectory.hpp"
#include "ways/SocketServer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <poll.h>
#include <sys/eventfd.h>

#include <array>
#include <future>

extern "C" const char* tellInC(const char* stimulus);

using launch::SocketPlace;
using usbip::FileDescriptor;
using virtual_adapter::AdapterRack;
using virtual_adapter::AdapterSettings;
using virtual_adapter::Bytes;
using virtual_adapter::SocketServer;

namespace {

constexpr const char* variable = "VELTRA_VIRTUAL_ADAPTER_SOCKET";

AdapterSettings named(const std::string& serialNumber) {
    AdapterSettings settings;
    settings.serialNumber = serialNumber;
    return settings;
}

class Tell : public testing::Test {
protected:
    ~Tell() override { unsetenv(variable); }

    void makeKnown() { setenv(variable, path.c_str(), 1); }

    const TemporaryDirectory directory;
    const std::string path = directory.path() / "adapter";
};

/// Two adapters, which a thread keeps.
class TellAdapters : public Tell {
protected:
    TellAdapters() : ended(std::async(std::launch::async, [this] { server.run(stop); })) {}
    ~TellAdapters() override { end(); }

    void end() {
        const uint64_t one = 1;
        (void)!write(stop.get(), &one, sizeof one);
        if (ended.valid()) {
            ended.get();
        }
    }

    AdapterRack rack{{named("A"), named("B")}};
    SocketPlace place = SocketPlace::at(path);
    SocketServer server{rack, place.takeListener()};
    FileDescriptor stop{eventfd(0, EFD_CLOEXEC)};
    std::future<void> ended;
};

TEST_F(TellAdapters, AStimulusHappensToTheOneThatIsNamed) {
    EXPECT_STREQ(veltraTellAdapter(path.c_str(), "B", "unplug"), nullptr);
    end();
    EXPECT_TRUE(rack.find(1)->isOnBus());
    EXPECT_FALSE(rack.find(2)->isOnBus());
}

TEST_F(TellAdapters, WhatCannotBeIsTold) {
    EXPECT_STREQ(veltraTellAdapter(path.c_str(), "C", "unplug"),
                 "no adapter has the serial number C");
    EXPECT_THAT(veltraTellAdapter(path.c_str(), "A", "explode"),
                testing::StartsWith("'explode' is no stimulus"));
}

TEST_F(TellAdapters, TheEnvironmentNamesTheSocketInBothLanguages) {
    setenv(variable, (path + ":/nonexistent").c_str(), 1);
    const char* const complaint = "there are several adapters; say which: --serial TEXT";
    EXPECT_STREQ(veltraTell("reset"), complaint);
    EXPECT_STREQ(tellInC("reset"), complaint);
}

TEST_F(TellAdapters, TheTextsOfThreadsAreTheirOwn) {
    const char* const mine = veltraTellAdapter(path.c_str(), "C", "reset");
    std::async(std::launch::async, [this] {
        EXPECT_STREQ(veltraTellAdapter(path.c_str(), "D", "reset"),
                     "no adapter has the serial number D");
    }).get();
    EXPECT_STREQ(mine, "no adapter has the serial number C");
}

TEST_F(Tell, WithoutAnAdapterTheTextSaysSo) {
    const std::string unknown =
        "no adapter is known here: start the program with veltra-virtual-adapter run, or name a "
        "socket to veltraTellAdapter";
    EXPECT_EQ(veltraTell("reset"), unknown);
    setenv(variable, "", 1);
    EXPECT_EQ(veltraTell("reset"), unknown);
    setenv(variable, std::string(200, 'x').c_str(), 1);
    EXPECT_EQ(veltraTell("reset"), unknown);
    EXPECT_EQ(veltraTellAdapter(path.c_str(), "", "reset"),
              "no adapter at " + path + ": No such file or directory");
    EXPECT_EQ(veltraTellAdapter(std::string(200, 'x').c_str(), "", "reset"),
              "no adapter at " + std::string(107, 'x') + ": File name too long");
}

/// Whoever listens there instead of an adapter.
class TellStranger : public Tell {
protected:
    /// What the program is told by one who hears all that it says, answers this and hangs up.
    std::string told(const Bytes& answer, const std::string& stimulus = "plug") {
        std::future<void> answered = std::async(std::launch::async, [&] {
            pollfd waiting{listener.get(), POLLIN, 0};
            poll(&waiting, 1, -1);
            const FileDescriptor client(accept(listener.get(), nullptr, nullptr));
            const size_t expected = 18 + 2 + stimulus.size();
            std::array<uint8_t, 4096> block{};
            ssize_t size = 1;
            heard.clear();
            while (heard.size() < expected && size > 0) {
                size = recv(client.get(), block.data(), block.size(), 0);
                heard.insert(heard.end(), block.data(), block.data() + std::max<ssize_t>(size, 0));
            }
            (void)!send(client.get(), answer.data(), answer.size(), MSG_NOSIGNAL);
        });
        const char* const text = veltraTellAdapter(path.c_str(), "VA", stimulus.c_str());
        const std::string copy = text == nullptr ? "done" : text;
        answered.get();
        return copy;
    }

    const std::string broken = "the adapter at " + path + " has ended without an answer";
    SocketPlace place = SocketPlace::at(path);
    const FileDescriptor listener = place.takeListener();
    Bytes heard;
};

TEST_F(TellStranger, IsToldInTheDocumentedBytes) {
    EXPECT_EQ(told({0x01, 0, 0, 0, 0x88}), "done");
    EXPECT_EQ(heard, (Bytes{7, 0, 0, 0, 1, 'V', 'V', 'A', 'S', 1,   0, //
                            9, 0, 0, 0, 8, 2,   0,   'V', 'A', 'p', 'l', 'u', 'g'}));
}

TEST_F(TellStranger, HasAReasonInItsAnswer) {
    EXPECT_EQ(told({0x03, 0, 0, 0, 0x88, 'n', 'o'}), "no");
    EXPECT_EQ(told({0x03, 0, 0, 0, 0xFF, 'n', 'o'}), "no");
}

TEST_F(TellStranger, SaysSomethingToPeopleFirst) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(told({0x03, 0, 0, 0, 0x90, 'h', 'i', 0x01, 0, 0, 0, 0x88}), "done");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "hi");
}

TEST_F(TellStranger, WhatIsNoAnswerIsToldAsNone) {
    for (const Bytes& answer :
         {Bytes{}, Bytes{0x01, 0, 0}, Bytes{0, 0, 0, 0, 0x88}, Bytes{0x05, 0, 0, 0, 0x88, 'x'},
          Bytes{0x01, 0, 0, 0x01, 0x88}, Bytes{0x01, 0, 0, 0, 0x82}, Bytes{0x01, 0, 0, 0, 0xFF},
          Bytes{0xFF, 0xFF, 0x7F, 0, 0x88}, Bytes{0x03, 0, 0, 0, 0x90, 'h'}}) {
        EXPECT_EQ(told(answer), broken) << testing::PrintToString(answer);
    }
}

TEST_F(TellStranger, ATextWithoutEndIsCut) {
    constexpr size_t size = 3000;
    Bytes answer{(size + 1) & 0xFF, (size + 1) >> 8, 0, 0, 0x88};
    answer.insert(answer.end(), size, 'x');
    EXPECT_EQ(told(answer), std::string(1023, 'x'));
}

TEST_F(TellStranger, AStimulusThatIsTooLongIsNotSent) {
    EXPECT_EQ(veltraTellAdapter(path.c_str(), "", std::string(size_t{1} << 18U, 'x').c_str()),
              broken);
}

} // namespace
