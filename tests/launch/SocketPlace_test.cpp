// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "launch/SocketPlace.hpp"

#include "support/TemporaryDirectory.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

using launch::SocketPlace;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;

std::string complaintAbout(const std::string& path) {
    try {
        SocketPlace::at(path);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

unsigned permissionsOf(const fs::path& path) {
    return static_cast<unsigned>(fs::status(path).permissions());
}

TEST(SocketPlace, OnlyItsUserReachesTheSocket) {
    const TemporaryDirectory own;
    setenv("XDG_RUNTIME_DIR", own.path().c_str(), 1);
    fs::path path;
    {
        const SocketPlace place = SocketPlace::inDirectoryOfItsOwn("veltra-virtual-adapter");
        path = place.path();
        EXPECT_THAT(path.string(), StartsWith(own.path().string() + "/veltra-virtual-adapter-"));
        EXPECT_EQ(permissionsOf(path.parent_path()), 0700U);
        EXPECT_EQ(permissionsOf(path), 0700U);
    }
    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_TRUE(fs::is_empty(own.path()));
}

TEST(SocketPlace, ADirectoryThatASocketsPathCannotHoldIsPassedOver) {
    const TemporaryDirectory own;
    for (const std::string& name : {std::string("a:b"), std::string(100, 'x')}) {
        const fs::path directory = own.path() / name;
        fs::create_directory(directory);
        setenv("XDG_RUNTIME_DIR", directory.c_str(), 1);
        EXPECT_THAT(SocketPlace::inDirectoryOfItsOwn("veltra-virtual-adapter").path(),
                    StartsWith("/tmp/"));
        EXPECT_TRUE(fs::is_empty(directory));
    }
    unsetenv("XDG_RUNTIME_DIR");
}

TEST(SocketPlace, WhatAKilledServerHasLeftBehindGoesWithTheNextStart) {
    const TemporaryDirectory own;
    setenv("XDG_RUNTIME_DIR", own.path().c_str(), 1);
    const fs::path left = own.path() / "veltra-virtual-adapter-abcdef";
    const fs::path kept = own.path() / "veltra-virtual-adapter-ghijkl";
    const fs::path others = own.path() / "veltra-captures";
    for (const fs::path& each : {left, kept, others}) {
        fs::create_directory(each);
    }
    std::ofstream(left / "socket");
    std::ofstream(kept / "notes") << "mine";
    const SocketPlace living = SocketPlace::inDirectoryOfItsOwn("veltra-virtual-adapter");
    EXPECT_FALSE(fs::exists(left));
    EXPECT_TRUE(fs::exists(kept / "notes"));
    EXPECT_TRUE(fs::exists(others));
    const SocketPlace next = SocketPlace::inDirectoryOfItsOwn("veltra-virtual-adapter");
    EXPECT_TRUE(fs::exists(living.path())) << "its server lives";
    unsetenv("XDG_RUNTIME_DIR");
}

TEST(SocketPlace, WhatIsNoDirectoryIsLeftAlone) {
    const TemporaryDirectory own;
    const TemporaryDirectory elsewhere;
    setenv("XDG_RUNTIME_DIR", own.path().c_str(), 1);
    std::ofstream(elsewhere.path() / "socket") << "mine";
    const fs::path link = own.path() / "veltra-virtual-adapter-abcdef";
    fs::create_directory_symlink(elsewhere.path(), link);
    const SocketPlace place = SocketPlace::inDirectoryOfItsOwn("veltra-virtual-adapter");
    EXPECT_TRUE(fs::exists(elsewhere.path() / "socket"));
    EXPECT_TRUE(fs::exists(link));
    unsetenv("XDG_RUNTIME_DIR");
}

TEST(SocketPlace, APathThatCannotBeIsExplained) {
    const TemporaryDirectory own;
    EXPECT_THAT(complaintAbout(own.path() / "a:b"), HasSubstr("cannot hold a colon"));
    EXPECT_THAT(complaintAbout(own.path() / std::string(108, 'x')), HasSubstr("at most 107 bytes"));
    EXPECT_THAT(complaintAbout(own.path() / "no" / "where"),
                HasSubstr("No such file or directory"));
    const fs::path file = own.path() / "file";
    std::ofstream(file) << "mine";
    EXPECT_THAT(complaintAbout(file), HasSubstr("it is there already, and in use"));
    EXPECT_TRUE(fs::is_regular_file(file)) << "what is no socket is left alone";
}

} // namespace
