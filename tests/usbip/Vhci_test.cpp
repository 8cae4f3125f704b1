// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usbip/Vhci.hpp"

#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

using namespace usbip;

namespace {

class VhciTest : public testing::Test {
protected:
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(directory / name) << text;
    }

    std::string read(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(directory / name).rdbuf();
        return text.str();
    }

    std::string failureOfPlugIn() const {
        try {
            static_cast<void>(Vhci(directory).plugIn(FileDescriptor(), Speed::Full));
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }

    const std::string columns = "hub port sta spd dev      sockfd local_busid\n";
    TemporaryDirectory own;
    const std::filesystem::path& directory = own.path();
};

TEST_F(VhciTest, TheFirstFreeHighSpeedPortIsTaken) {
    write("status", columns + "hs  0000 006 003 00010002 000003 1-1\n"
                              "hs  0008 004 000 00000000 000000 0-0\n"
                              "ss  0009 004 000 00000000 000000 0-0\n");
    write("attach", "");
    write("detach", "");
    const FileDescriptor socket(dup(0));
    EXPECT_EQ(Vhci(directory).plugIn(socket, Speed::High), 8U);
    EXPECT_EQ(read("attach"), "8 " + std::to_string(socket.get()) + " 65538 3");
    Vhci(directory).pullOut(8);
    EXPECT_EQ(read("detach"), "8");
}

TEST_F(VhciTest, WithoutTheModuleTheMessageSaysHowToLoadIt) {
    EXPECT_NE(failureOfPlugIn().find("modprobe vhci-hcd"), std::string::npos) << failureOfPlugIn();
}

TEST_F(VhciTest, WithoutAFreePortTheMessageSaysSo) {
    write("status", columns + "hs  0000 006 003 00010002 000003 1-1\n");
    EXPECT_NE(failureOfPlugIn().find("in use"), std::string::npos) << failureOfPlugIn();
}

TEST_F(VhciTest, WithoutTheRightTheMessageSaysWhoHasIt) {
    write("status", columns + "hs  0000 004 000 00000000 000000 0-0\n");
    write("attach", "");
    using std::filesystem::perms;
    std::filesystem::permissions(directory / "attach", perms::none);
    std::filesystem::permissions(directory,
                                 perms::owner_all | perms::group_exec | perms::others_exec);
    const uid_t user = geteuid();
    constexpr uid_t nobody = 65534; // root may write everything
    ASSERT_TRUE(user != 0 || seteuid(nobody) == 0);
    const std::string failure = failureOfPlugIn();
    ASSERT_EQ(seteuid(user), 0);
    EXPECT_NE(failure.find("root's rights"), std::string::npos) << failure;
}

} // namespace
