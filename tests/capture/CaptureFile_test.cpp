// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capture/CaptureFile.hpp"

#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using capture::CaptureFile;

namespace {

int append(const CaptureFile& file, const std::string& text) {
    return file.append(reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

std::string contentOf(const std::string& path) {
    std::ifstream stream(path);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

bool isPending(int signal) {
    sigset_t pending;
    return sigpending(&pending) == 0 && sigismember(&pending, signal) == 1;
}

class CaptureFileTest : public testing::Test {
protected:
    TemporaryDirectory directory;
    std::string path = directory.path() / "file";
    CaptureFile file;
};

TEST_F(CaptureFileTest, SeveralWritersAppendToOneFile) {
    CaptureFile second;
    ASSERT_EQ(file.open(path.c_str()), 0);
    ASSERT_EQ(second.open(path.c_str()), 0);
    EXPECT_EQ(append(file, "one "), 0);
    EXPECT_EQ(append(second, "two "), 0);
    EXPECT_EQ(append(file, "three"), 0);
    EXPECT_EQ(contentOf(path), "one two three");
}

TEST_F(CaptureFileTest, WhatCannotBeOpenedIsTold) {
    EXPECT_EQ(file.open((path + "/file").c_str()), ENOENT);
    EXPECT_EQ(append(file, "text"), EBADF);
}

TEST_F(CaptureFileTest, AFullDiskIsTold) {
    ASSERT_EQ(file.open("/dev/full"), 0);
    EXPECT_EQ(append(file, "text"), ENOSPC);
}

TEST_F(CaptureFileTest, AReaderThatHasGoneRaisesNoSignal) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_EQ(file.open(path.c_str()), 0);
    EXPECT_EQ(append(file, "text"), 0);
    close(reader);
    EXPECT_EQ(append(file, "text"), EPIPE);
    EXPECT_FALSE(isPending(SIGPIPE));
}

TEST_F(CaptureFileTest, AFileThatMayNotGrowRaisesNoSignal) {
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{6, before.rlim_max};
    ASSERT_EQ(file.open(path.c_str()), 0);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const int fitting = append(file, "1234");
    const int cut = append(file, "5678");
    const int refused = append(file, "9");
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(fitting, 0);
    EXPECT_EQ(cut, ENOSPC);
    EXPECT_EQ(refused, EFBIG);
    EXPECT_FALSE(isPending(SIGXFSZ));
}

TEST_F(CaptureFileTest, ASignalThatTheProgramHoldsBackStays) {
    ASSERT_EQ(file.open("/dev/full"), 0);
    sigset_t held;
    sigset_t before;
    sigemptyset(&held);
    sigaddset(&held, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &held, &before);
    raise(SIGPIPE);
    EXPECT_EQ(append(file, "text"), ENOSPC);
    EXPECT_TRUE(isPending(SIGPIPE));
    const timespec atOnce{};
    sigtimedwait(&held, nullptr, &atOnce);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(CaptureFileTest, AFileThatTookTheDescriptorIsLeftAlone) {
    ASSERT_EQ(file.open(path.c_str()), 0);
    struct stat status {};
    stat(path.c_str(), &status);
    // The program closes what it does not know, and opens a file of its own.
    int taken = -1;
    for (int descriptor = 3; descriptor < 1024 && taken < 0; ++descriptor) {
        struct stat other {};
        if (fstat(descriptor, &other) == 0 && other.st_ino == status.st_ino) {
            const std::string own = directory.path() / "own";
            const int opened = ::open(own.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
            taken = dup2(opened, descriptor);
            close(opened);
        }
    }
    ASSERT_GE(taken, 0);
    EXPECT_EQ(append(file, "text"), EBADF);
    EXPECT_EQ(contentOf(directory.path() / "own"), "");
    close(taken);
}

} // namespace
