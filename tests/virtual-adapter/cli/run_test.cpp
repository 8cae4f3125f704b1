// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "virtual-adapter/cli/RunProgram.hpp"

#include <csignal>

#include <gmock/gmock.h>

using testing::EndsWith;
using testing::StartsWith;

namespace {

const std::string openIt = "open 1-1:1.0";
/// Identity string 1 under the transaction identifiers 1 to 4; the report identifier comes first.
const std::string write1 = "write 00 17 00 01 00 07 04 01";
const std::string write2 = "write 00 17 00 02 00 07 04 01";
const std::string write3 = "write 00 17 00 03 00 07 04 01";
const std::string write4 = "write 00 17 00 04 00 07 04 01";
const std::string response1 = "read: 64 37 00 01 00 07 04 00 00 07 56 65 6c 74 72 61\n";
const std::string response2 = "read: 64 37 00 02 00 07 04 00 00 07 56 65 6c 74 72 61\n";
const std::string response3 = "read: 64 37 00 03 00 07 04 00 00 07 56 65 6c 74 72 61\n";
const std::string response4 = "read: 64 37 00 04 00 07 04 00 00 07 56 65 6c 74 72 61\n";
const std::string readNow = "read 0";
const std::string readPatiently = "read 30000";

/// The first two exchanges, which no fault touches.
const Arguments twoExchanges{openIt, write1, readNow, write2, readNow};
const std::string twoAnswers = "open: ok\nwrite: 8\n" + response1 + "write: 8\n" + response2;

TEST(Run, AFullSpeedAdapterIsListedUnlessToldOtherwise) {
    const std::string line =
        listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001");
    EXPECT_EQ(play({}, {"init", "list", "exit"}), "init: 0\n" + line + "exit: 0\n");
    EXPECT_EQ(play({"--model", "full-speed"}, {"list"}), line);
}

TEST(Run, AHighSpeedAdapterHas1024ByteReports) {
    EXPECT_EQ(play({"--model", "high-speed"}, {"list", openIt, write1, readNow, "close"}),
              listed(VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED, "Veltra | high-speed | VA-0001") +
                  "open: ok\nwrite: 8\nread: 1024 37 00 01 00 07 04 00 00 07 56 65 6c 74 72 61\n");
}

TEST(Run, TheSerialNumberIsUtf8) {
    EXPECT_EQ(play({"--serial", "S\xC3\xA9-\xCE\xA9\xF0\x9F\x98\x80"}, {"list"}),
              listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED,
                     "Veltra | full-speed | S\xC3\xA9-\xCE\xA9\xF0\x9F\x98\x80"));
}

TEST(Run, AWriteReturnsWhatItWasGivenAndAReportIdentifierIsOptional) {
    EXPECT_EQ(play({}, {openIt, write1, readNow, "write 17 00 02 00 07 04 01", readNow}),
              "open: ok\nwrite: 8\n" + response1 + "write: 7\n" + response2);
}

TEST(Run, AWriteOfNothingFails) {
    EXPECT_EQ(play({}, {openIt, "write ", readNow}), "open: ok\nwrite: -1\nread: 0\n");
}

TEST(Run, AnUnknownPathIsNotOpened) {
    EXPECT_EQ(play({}, {"open 1-2:1.0"}), "open: null\n");
}

TEST(Run, AnOpenAdapterIsNotOpenedTwice) {
    EXPECT_EQ(play({}, {openIt, openIt, "close", openIt}), "open: ok\nopen: null\nopen: ok\n");
}

TEST(Run, AClosedAdapterIsNeitherReadNorWritten) {
    EXPECT_EQ(play({}, {openIt, "close", write1, readPatiently}),
              "open: ok\nwrite: -1\nread: -1\n");
}

TEST(Run, ExitWhileOpenAborts) {
    const ProcessResult result = run({}, {hidProbe, openIt, "exit"});
    EXPECT_EQ(result.status, -SIGABRT);
    EXPECT_EQ(result.output, "open: ok\n");
    EXPECT_THAT(result.errors, StartsWith("veltra-virtual-adapter: hid_exit while a device is "
                                          "open: the real hidapi aborts here too\n"));
}

TEST(Run, ExitAfterCloseIsFine) {
    EXPECT_EQ(play({}, {openIt, "close", "exit", "exit"}), "open: ok\nexit: 0\nexit: 0\n");
}

TEST(Run, BootModeTakesTheAdapterOffTheBus) {
    EXPECT_EQ(play({}, {openIt, "write 00 13 00 01 00 02 04", readNow, readPatiently, "list",
                        "close", openIt}),
              "open: ok\nwrite: 7\nread: 64 1b 00 01 00 02 04\nread: -1\nlist: nothing\n"
              "open: null\n");
}

TEST(RunFork, AChildFindsTheAdapterInUseByItsParent) {
    const std::string line =
        listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001");
    EXPECT_EQ(
        play({}, {openIt, write1, "fork 2", "init", "list", openIt, readNow, "close", "exit"}),
        "open: ok\nwrite: 8\n"
        "init: 0\n" +
            line + "open: null\nread: -1\nexit: 0\n" + "init: 0\n" + line +
            "open: null\nread: -1\nexit: 0\n" + "init: 0\n" + line + "open: null\n" + response1 +
            "exit: 0\n");
}

TEST(RunFork, ChildrenUseTheAdapterOneAfterTheOther) {
    const std::string eachOne = "open: ok\nwrite: 8\n" + response2;
    EXPECT_EQ(play({}, {openIt, "close", "fork 2", openIt, write2, readNow, "close"}),
              "open: ok\n" + eachOne + eachOne + eachOne);
}

TEST(RunFork, TheHandleOfAParentIsClosedInItsChild) {
    EXPECT_EQ(play({}, {openIt, write1, "fork 1", readPatiently, write2, "close", "exit"}),
              "open: ok\nwrite: 8\n"
              "read: -1\nwrite: -1\nexit: 0\n" +
                  response1 + "write: 8\nexit: 0\n");
}

TEST(RunFork, AThreadThatReadsMeanwhileDoesNotHoldTheChildUp) {
    const size_t children = 10;
    std::string expected = "open: ok\nhammer: 0\n";
    for (size_t i = 0; i < children; ++i) {
        expected += "read: -1\nopen: null\nwrite: -1\n";
    }
    // A sanitizer that looked back at the end would miss the parent's thread in the children.
    const std::string output =
        play({}, {openIt, "hammer", "fork 10", readNow, openIt, write1, "leave"});
    EXPECT_THAT(output, StartsWith(expected));
}

TEST(RunFault, ALateResponseComesAfterTheTimeOut) {
    EXPECT_EQ(play({"--fault", "late-response", "--fault-delay", "3600000"},
                   twoExchanges + Arguments{write3, readNow}),
              twoAnswers + "write: 8\nread: 0\n");
    EXPECT_EQ(play({"--fault", "late-response", "--fault-delay", "1"},
                   twoExchanges + Arguments{write3, readPatiently}),
              twoAnswers + "write: 8\n" + response3);
}

TEST(RunFault, ALostResponseNeverComes) {
    EXPECT_EQ(play({"--fault", "lost-response"},
                   twoExchanges + Arguments{write3, readNow, write4, readNow}),
              twoAnswers + "write: 8\nread: 0\nwrite: 8\n" + response4);
}

TEST(RunFault, AWrongIdentifierAnswersAnotherRequest) {
    EXPECT_EQ(play({"--fault", "wrong-identifier"}, twoExchanges + Arguments{write3, readNow}),
              twoAnswers + "write: 8\n" + response4);
}

TEST(RunFault, AShortFrameHasNoWholeHeader) {
    EXPECT_EQ(play({"--fault", "short-frame"}, twoExchanges + Arguments{write3, readNow}),
              twoAnswers + "write: 8\nread: 64 17 00 03 00 07 04\n");
}

TEST(RunFault, AnUnpluggedAdapterIsGoneForEver) {
    EXPECT_EQ(play({"--fault", "unplug"},
                   twoExchanges + Arguments{"list", write3, readPatiently, write4, readPatiently,
                                            "list", "close", openIt}),
              twoAnswers +
                  listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001") +
                  "write: -1\nread: -1\nwrite: -1\nread: -1\nlist: nothing\nopen: null\n");
}

TEST(RunFault, AStalledAdapterTakesNothingMore) {
    EXPECT_EQ(play({"--fault", "stall"},
                   twoExchanges + Arguments{write3, readNow, write4, readNow, "list"}),
              twoAnswers + "write: -1\nread: 0\nwrite: -1\nread: 0\n" +
                  listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001"));
}

TEST(RunFault, AnOverLongCountAnnouncesMoreThanTheResponseCarries) {
    EXPECT_EQ(play({"--fault", "over-long-count"}, twoExchanges + Arguments{write3, readNow}),
              twoAnswers + "write: 8\nread: 64 37 00 03 00 07 04 00 00 ff 56 65 6c 74 72 61\n");
}

TEST(RunFault, ANotificationStormSurroundsTheResponse) {
    // The UART's notifications take two 64-byte reports: 1,200 reports come before the response.
    const Arguments reads(1201, readNow);
    const std::string output = play({"--fault", "notification-storm"},
                                    twoExchanges + Arguments{write3} + reads + Arguments{readNow});
    const std::string hotJoin = "read: 64 3f 00 00 00 82 19 00 00 04 6a 00 00 00 01 06 c6 08\n";
    EXPECT_THAT(output, StartsWith(twoAnswers + "write: 8\n" + hotJoin));
    EXPECT_THAT(output, EndsWith(response3 + hotJoin));
}

TEST(RunFault, WithoutPermissionTheAdapterHasNoStringsAndDoesNotOpen) {
    EXPECT_EQ(play({"--fault", "no-permission"}, {"list", openIt}),
              listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "(null) | (null) | (null)") +
                  "open: null\n");
}

TEST(RunFault, LostReportsAreTheOldest) {
    const Arguments writes(33, write2);
    const Arguments reads(33, readNow);
    std::string expected = "open: ok\nwrite: 8\nwrite: 8\n";
    for (int i = 0; i < 32; ++i) {
        expected += "write: 8\n";
    }
    for (int i = 0; i < 32; ++i) {
        expected += response2;
    }
    EXPECT_EQ(play({"--fault", "lost-reports"}, Arguments{openIt, write1} + writes + reads),
              expected + "read: 0\n");
}

} // namespace
