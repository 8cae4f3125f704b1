// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capture/readCapture.hpp"

#include "support/TemporaryDirectory.hpp"
#include "virtual-adapter/cli/RunProgram.hpp"

#include <csignal>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

using capture::Capture;
using capture::CapturedRecord;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string openIt = "open 1-1:1.0";
/// Identity string 1 under the transaction identifiers 1 to 3; the report identifier comes first.
const std::string write1 = "write 00 17 00 01 00 07 04 01";
const std::string write2 = "write 00 17 00 02 00 07 04 01";
const std::string write3 = "write 00 17 00 03 00 07 04 01";
const std::string readNow = "read 0";

const std::string submitRead = "S in 2048";
const std::string takenBack = "C in 0 status -2";

/// A record in words; the trailing zeros of its data are left out.
std::string textOf(const CapturedRecord& captured) {
    const capture::UsbRecord& record = captured.record;
    std::string text(1, static_cast<char>(record.event));
    text += record.isIn() ? " in " : " out ";
    if (record.transfer == capture::UsbTransfer::Control) {
        text = std::string(1, text[0]) + " control ";
    }
    text += std::to_string(record.length);
    if (record.event == capture::UsbEvent::Complete && record.status != 0) {
        text += " status " + std::to_string(record.status);
    }
    std::vector<uint8_t> data = captured.data;
    if (record.hasSetup) {
        data.assign(record.setup.begin(), record.setup.end());
    }
    while (!data.empty() && data.back() == 0) {
        data.pop_back();
    }
    for (const uint8_t byte : data) {
        std::array<char, 4> digits{};
        (void)std::snprintf(digits.data(), digits.size(), " %02x", byte);
        text += digits.data();
    }
    return text;
}

class CapturePreload : public testing::Test {
protected:
    ProcessResult captureRun(const Arguments& options, const Arguments& calls) {
        return runProcess(Arguments{virtualAdapter, "run"} + options + Arguments{"--", hidProbe} +
                              calls,
                          {"LD_PRELOAD=" + preloadList(CAPTURE_LIBRARY), "VELTRA_CAPTURE=" + path});
    }

    Capture captured() {
        std::ifstream stream(path, std::ios::binary);
        return capture::readCapture({std::istreambuf_iterator<char>(stream), {}});
    }

    std::vector<std::string> capturedText() {
        std::vector<std::string> texts;
        for (const CapturedRecord& record : captured().records) {
            texts.push_back(textOf(record));
        }
        return texts;
    }

    TemporaryDirectory directory;
    std::string path = directory.path() / "file.pcapng";
};

TEST_F(CapturePreload, ARequestAndItsResponseAreTwoTransfers) {
    const ProcessResult result = captureRun({}, {openIt, write1, readNow, "close", "exit"});
    EXPECT_EQ(result.output, "open: ok\nwrite: 8\nread: 64 37 00 01 00 07 04 00 00 07 56 65 6c 74 "
                             "72 61\nexit: 0\n");
    EXPECT_EQ(result.errors, "");
    EXPECT_THAT(capturedText(), ElementsAre("S out 7 17 00 01 00 07 04 01", "C out 7", submitRead,
                                            "C in 64 37 00 01 00 07 04 00 00 07 56 65 6c 74 72 61",
                                            submitRead, takenBack));
}

TEST_F(CapturePreload, TheDescriptorsOfAListedAdapterComeFirst) {
    captureRun({"--model", "high-speed", "--serial", "S\xC3\xA9\xF0\x9F\x98\x80"},
               {"list", openIt});
    EXPECT_THAT(capturedText(),
                ElementsAre("S control 18 80 06 00 01 00 00 12",
                            "C control 18 12 01 00 02 00 00 00 40 09 12 02 00 00 01 01 02 03 01",
                            "S control 14 80 06 01 03 09 04 0e",
                            "C control 14 0e 03 56 00 65 00 6c 00 74 00 72 00 61",
                            "S control 22 80 06 02 03 09 04 16",
                            "C control 22 16 03 68 00 69 00 67 00 68 00 2d 00 73 00 70 00 65 00 65 "
                            "00 64",
                            "S control 10 80 06 03 03 09 04 0a",
                            "C control 10 0a 03 53 00 e9 00 3d d8 00 de"));
}

TEST_F(CapturePreload, BothRecordsOfATransferHaveOneIdentifierAndOneAddress) {
    captureRun({}, {openIt, write1, readNow, write2, readNow, "close"});
    const Capture capture = captured();
    ASSERT_EQ(capture.records.size(), 10U);
    EXPECT_FALSE(capture.isCut);
    std::vector<uint64_t> submitted;
    for (const CapturedRecord& captured : capture.records) {
        EXPECT_EQ(captured.record.bus, 1);
        EXPECT_EQ(captured.record.device, capture.records[0].record.device);
        if (captured.record.event == capture::UsbEvent::Submit) {
            submitted.push_back(captured.record.id);
        } else {
            const auto begun = std::find(submitted.begin(), submitted.end(), captured.record.id);
            ASSERT_NE(begun, submitted.end());
            submitted.erase(begun);
        }
    }
    EXPECT_EQ(submitted, std::vector<uint64_t>());
}

TEST_F(CapturePreload, AnAdapterThatHasGoneIsToldOnce) {
    captureRun({"--fault", "unplug"},
               {openIt, write1, readNow, write2, readNow, write3, readNow, readNow, "close"});
    const std::vector<std::string> texts = capturedText();
    ASSERT_EQ(texts.size(), 12U);
    EXPECT_EQ(texts[9], "S out 7 17 00 03 00 07 04 01");
    EXPECT_EQ(texts[10], "C out 0 status -5");
    EXPECT_EQ(texts[11], "C in 0 status -108");
}

TEST_F(CapturePreload, AProgramThatAbortsLeavesWhatItSent) {
    const ProcessResult result = captureRun({}, {openIt, write1, "exit"});
    EXPECT_EQ(result.status, -SIGABRT);
    EXPECT_THAT(capturedText(), ElementsAre("S out 7 17 00 01 00 07 04 01", "C out 7"));
}

TEST_F(CapturePreload, SeveralProcessesAppend) {
    captureRun({}, {openIt, write1});
    captureRun({}, {openIt, write2});
    EXPECT_THAT(capturedText(), ElementsAre("S out 7 17 00 01 00 07 04 01", "C out 7",
                                            "S out 7 17 00 02 00 07 04 01", "C out 7"));
}

TEST_F(CapturePreload, AProgramThatOpensNoAdapterMakesNoFile) {
    const ProcessResult result = captureRun({}, {"init", "list", "exit"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(CapturePreload, AFileThatCannotBeMadeIsToldAndTheProgramGoesOn) {
    path = directory.path() / "no" / "file";
    const ProcessResult result = captureRun({}, {openIt, write1, readNow});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("read: 64"));
    EXPECT_EQ(result.errors, "veltra capture: " + path +
                                 ": No such file or directory; the program goes on without a "
                                 "capture\n");
}

TEST_F(CapturePreload, AFullDiskEndsTheCaptureAndNotTheProgram) {
    path = "/dev/full";
    const ProcessResult result =
        captureRun({}, {openIt, write1, readNow, write2, readNow, "close"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("read: 64 37 00 02"));
    EXPECT_EQ(result.errors, "veltra capture: /dev/full: No space left on device; the capture ends "
                             "here, the program goes on\n");
}

} // namespace
