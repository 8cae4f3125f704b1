// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "virtual-adapter/cli/RunProgram.hpp"

namespace {

/// What a shell under `run` prints.
ProcessResult shell(const std::string& commands) {
    return run({}, {"sh", "-c", commands});
}

const std::string tell = "'" + virtualAdapter + "' tell ";

TEST(TellStimulus, OneThatIsDoneIsSilent) {
    const ProcessResult result =
        shell(tell + "gpio drive 4 1 && " + tell + "i2c 0 0x48 set temperature 85.5 && " + tell +
              "fault stall@i2c-read && " + tell + "reset");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
}

TEST(TellStimulus, OneThatCannotBeSaysWhyAndExitsWithOne) {
    const ProcessResult result = shell(tell + "gpio drive 9 1");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "veltra-virtual-adapter: '9' is no pin: expected 0 to 7\n");
}

TEST(TellStimulus, AFaultStrikesTheNextProgramAndThePlugBringsTheAdapterBack) {
    const std::string probe = "'" + hidProbe + "' ";
    const ProcessResult result = shell(tell + "fault unplug@1 && " + probe +
                                       "'open 1-1:1.0' 'write 00 17 00 01 00 07 04 01' list && " +
                                       tell + "plug && " + probe + "list");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output.substr(result.output.find("write")),
              "write: -1\nlist: nothing\n" +
                  listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001"));
}

} // namespace
