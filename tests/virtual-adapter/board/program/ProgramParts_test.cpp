// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/program/ProgramParts.hpp"

#include "board/program/part_lines.hpp"

#include "support/TemporaryDirectory.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

using virtual_adapter::Bytes;
using virtual_adapter::Command;
using virtual_adapter::I2cDirection;
using virtual_adapter::I2cTarget;
using virtual_adapter::PartFailure;
using virtual_adapter::PartProcess;
using virtual_adapter::Place;
using virtual_adapter::Placement;

namespace {

const char* const hello = R"(read hello; echo '{"veltra-part":1}'; )";

/// Longer than any loaded machine takes, unless a test waits for the end of it.
constexpr PartProcess::Patience enough{60'000};
constexpr PartProcess::Patience little{50};

class ProgramParts : public testing::Test {
protected:
    std::unique_ptr<I2cTarget> i2c(const Command& command,
                                   PartProcess::Patience patience = enough) {
        return i2cProgramPart(
            placed(Place::I2c, {{"bus", uint64_t{0}}, {"address", uint64_t{0x3C}}}, command),
            "board.toml", complain(), patience);
    }
    std::unique_ptr<I2cTarget> shell(const std::string& script,
                                     PartProcess::Patience patience = enough) {
        return i2c({"sh", "-c", script}, patience);
    }
    std::unique_ptr<virtual_adapter::SpiTarget> spi(const Command& command) {
        return spiProgramPart(placed(Place::Spi, {{"chip_select", uint64_t{0}}}, command),
                              "board.toml", complain(), enough);
    }
    std::unique_ptr<virtual_adapter::SpiTarget> spiShell(const std::string& script) {
        return spi({"sh", "-c", script});
    }

    /// What was said so far, and is expected to be all.
    std::vector<std::string> said;

    const TemporaryDirectory directory;

private:
    Placement placed(Place place, const virtual_adapter::SettingValues& where,
                     const Command& command) {
        Placement part(place, "program", where, {{"command", command}});
        part.line = 7;
        part.directory = directory.path();
        return part;
    }
    virtual_adapter::Complaint complain() {
        return [this](const std::string& text) { said.push_back(text); };
    }
};

std::string complaint(const std::string& what) {
    return "board.toml:7: the part 'sh' " + what + "; it does not acknowledge any more";
}

// --- What it is asked ---------------------------------------------------------------------------

TEST_F(ProgramParts, AnI2cPartIsAskedMessageByMessage) {
    const auto part = shell(std::string(hello) + R"(
        read a; echo '{"ack":true}'; read b; echo '{"ack":2}'
        read c; echo '{"ack":true}'; read d; echo '{"data":"00112233"}'; read e; echo '{}'
        read f; echo '{"ack":false}'
        printf '%s\n' "$hello" "$a" "$b" "$c" "$d" "$e" "$f" >seen
        read g; echo '{}'; read -r h; printf '%s\n' "$g" "$h" >>seen
        echo '{"error":"no such setting"}'; read end)");
    EXPECT_TRUE(part->start(I2cDirection::Write));
    EXPECT_EQ(part->writeMessage({0x00, 0xAF, 0x01}), 2U);
    EXPECT_TRUE(part->start(I2cDirection::Read));
    EXPECT_EQ(part->readMessage(4), (Bytes{0x00, 0x11, 0x22, 0x33}));
    part->stop();
    EXPECT_FALSE(part->start(I2cDirection::Write));
    EXPECT_EQ(part->set("temperature", "85.5"), "");
    EXPECT_EQ(part->set("\"\n", ""), "no such setting");
    EXPECT_TRUE(said.empty());
    std::ifstream stream(directory.path() / "seen");
    const std::string seen{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_EQ(seen, R"({"veltra-part":1}
{"op":"start","read":false,"restart":false}
{"op":"write","data":"00af01"}
{"op":"start","read":true,"restart":true}
{"op":"read","count":4}
{"op":"stop"}
{"op":"start","read":false,"restart":false}
{"op":"set","name":"temperature","value":"85.5"}
)" + std::string(R"({"op":"set","name":"\"\n","value":""})") +
                        "\n");
}

TEST_F(ProgramParts, AnSpiPartIsAskedTransferByTransfer) {
    const auto part = spiShell(std::string(hello) +
                               R"(read a; echo '{"data":"ff5641"}'; read b; echo '{"data":"00"}')");
    EXPECT_EQ(part->transfer({0x9F, 0, 0}), (Bytes{0xFF, 0x56, 0x41}));
    EXPECT_EQ(part->transfer({0x05, 0}), (Bytes{0xFF, 0xFF}));
    EXPECT_EQ(said, std::vector<std::string>{
                        complaint(R"(answers '{"data":"00"}' where {"data":"..."} with 2 bytes in )"
                                  "hexadecimal is expected")});
}

TEST_F(ProgramParts, TheLongestTransferPasses) {
    const auto part = spi({"python3", "-c", R"(
import json, sys
print(input(), flush=True)
for line in sys.stdin:
    print(json.dumps({"data": json.loads(line)["data"]}), flush=True))"});
    const Bytes longest(65535, 0x5A);
    EXPECT_EQ(part->transfer(longest), longest);
    EXPECT_TRUE(said.empty());
}

// --- What it does wrong -------------------------------------------------------------------------

TEST_F(ProgramParts, OneThatEndsDoesNotAcknowledgeAnyMoreWhichIsSaidOnce) {
    const auto part = shell(std::string(hello) + "read start; exit 3");
    EXPECT_FALSE(part->start(I2cDirection::Write));
    EXPECT_FALSE(part->start(I2cDirection::Read));
    EXPECT_EQ(part->readMessage(2), (Bytes{0xFF, 0xFF}));
    EXPECT_EQ(part->writeMessage({1}), 0U);
    part->stop();
    part->cyclePower();
    EXPECT_EQ(part->set("x", "1"), "the program does not answer any more");
    EXPECT_EQ(said, std::vector<std::string>{complaint("has ended with exit status 3")});
}

TEST_F(ProgramParts, OneThatASignalEndsIsToldSo) {
    shell(std::string(hello) + "read start; kill -SEGV $$")->start(I2cDirection::Write);
    EXPECT_EQ(said, std::vector<std::string>{complaint("was ended by signal 11")});
}

TEST_F(ProgramParts, OneThatIsSilentIsGivenUp) {
    const auto impatient = shell("sleep 1000", little);
    EXPECT_FALSE(impatient->start(I2cDirection::Write));
    EXPECT_EQ(said, std::vector<std::string>{complaint("has not answered for 50 ms")});
}

TEST_F(ProgramParts, OneThatDoesNotReadIsGivenUp) {
    PartProcess deaf({"sleep", "1000"}, directory.path(), little);
    EXPECT_THROW(deaf.ask(std::string(4'000'000, 'x')), PartFailure);
}

TEST_F(ProgramParts, OneThatTalksNonsenseIsToldWhatWasExpected) {
    shell("read hello; printf 'Hello\\001!\\n'");
    shell(R"(read hello; echo '{"veltra-part":2}')");
    shell(std::string(hello) + R"(read a; echo '{"ack":1}')")->start(I2cDirection::Write);
    shell(std::string(hello) + R"(read a; echo '{"ack":2}')")->writeMessage({1});
    shell(std::string(hello) + R"(read a; echo '{"data":"0g"}')")->readMessage(1);
    shell(std::string(hello) + R"(read a; echo '[]')")->stop();
    shell(std::string(hello) + R"(read a; echo '{"ok":true}')")->set("a", "b");
    EXPECT_EQ(
        said,
        (std::vector<std::string>{
            complaint(R"(answers 'Hello?!' where {"veltra-part":1} is expected)"),
            complaint(R"(answers '{"veltra-part":2}' where {"veltra-part":1} is expected)"),
            complaint(R"(answers '{"ack":1}' where {"ack":true} or {"ack":false} is expected)"),
            complaint(R"(answers '{"ack":2}' where {"ack":N} with N from 0 to 1 is expected)"),
            complaint(R"(answers '{"data":"0g"}' where {"data":"..."} with 1 bytes in )"
                      "hexadecimal is expected"),
            complaint("answers '[]' where {} is expected"),
            complaint(R"(answers '{"ok":true}' where {} or {"error":"..."} is expected)"),
        }));
}

TEST_F(ProgramParts, OneThatFloodsIsGivenUp) {
    shell(std::string(hello) + "read a; exec tr '\\0' x </dev/zero")->start(I2cDirection::Write);
    EXPECT_EQ(said,
              std::vector<std::string>{complaint("answers with a line of more than 262144 bytes")});
    said.clear();
    const auto part = shell(std::string(hello) + R"(read a; printf '{"ack":true}\n{"ack":true}\n';
                                                    read b; read c)");
    EXPECT_TRUE(part->start(I2cDirection::Write));
    EXPECT_FALSE(part->start(I2cDirection::Write));
    EXPECT_EQ(said, std::vector<std::string>{complaint("says more than it is asked")});
}

TEST_F(ProgramParts, OneThatCannotBeStartedIsToldWhy) {
    i2c({"no-such-part"});
    EXPECT_EQ(said, std::vector<std::string>{
                        "board.toml:7: the part 'no-such-part' cannot be started: there is no "
                        "program 'no-such-part'; it does not acknowledge any more"});
    said.clear();
    std::ofstream(directory.path() / "part") << "no program";
    std::filesystem::permissions(directory.path() / "part", std::filesystem::perms::owner_all);
    i2c({"./part"});
    EXPECT_EQ(said, std::vector<std::string>{
                        "board.toml:7: the part './part' cannot be started: Exec format error; it "
                        "does not acknowledge any more"});
}

TEST_F(ProgramParts, OneStartsAgainWhenPowerComes) {
    const auto part = shell(std::string(hello) + R"(echo started >>starts; read a;
                                                    echo '{"ack":true}'; read b)");
    part->start(I2cDirection::Write);
    part->cyclePower();
    EXPECT_TRUE(part->start(I2cDirection::Write));
    std::ifstream stream(directory.path() / "starts");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "started\nstarted\n");
    EXPECT_TRUE(said.empty());
}

// --- Its end ------------------------------------------------------------------------------------

/// Whether the process has ended; whoever inherits it may not have waited for it yet.
bool hasEnded(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/stat");
    std::string number;
    std::string name;
    std::string state;
    return !(status >> number >> name >> state) || state == "Z";
}

/// Waits until it has. One that does not end makes the test end by its time-out.
void awaitEnd(pid_t process) {
    while (!hasEnded(process)) {
        std::this_thread::yield();
    }
}

pid_t numberIn(const std::filesystem::path& file) {
    pid_t number = 0;
    std::ifstream(file) >> number;
    return number;
}

TEST_F(ProgramParts, NothingOfItIsLeftWhenTheBoardGoes) {
    {
        const auto part = shell(std::string(hello) + R"(sleep 1000 & echo $! >child; echo $$ >self
            trap '' HUP TERM; read a; echo '{"ack":true}'; while :; do sleep 1000; done)");
        EXPECT_TRUE(part->start(I2cDirection::Write));
    }
    EXPECT_TRUE(hasEnded(numberIn(directory.path() / "self")));
    awaitEnd(numberIn(directory.path() / "child"));
}

TEST_F(ProgramParts, OneThatIsToldTheEndHasTimeForIt) {
    shell(std::string(hello) + "read end; echo closed >journal");
    std::ifstream stream(directory.path() / "journal");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "closed\n");
}

TEST_F(ProgramParts, ItGetsNoDescriptorOfTheAdapters) {
    const auto part = shell(std::string(hello) +
                            R"(read a; ls /proc/self/fd | tr '\n' ' ' >open; echo '{"ack":true}')");
    part->start(I2cDirection::Write);
    std::ifstream stream(directory.path() / "open");
    // The last is the one through which ls reads the directory.
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "0 1 2 3 ");
}

} // namespace
