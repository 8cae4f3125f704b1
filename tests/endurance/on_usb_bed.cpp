// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Runs a program that finds a virtual adapter through the real hidapi and libusb: on_usb_bed
// PROGRAM [ARGUMENT]...
#include "usb/UsbTestBed.hpp"

#include <cstdio>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char** argv) {
    if (argc < 2) {
        (void)std::fputs("usage: on_usb_bed PROGRAM [ARGUMENT]...\n", stderr);
        return 2;
    }
    test_support::UsbTestBed bed;
    // What the program has read is not known here.
    bed.plugIn().sendWithoutPacing();
    pid_t program = 0;
    int status = 0;
    if (posix_spawn(&program, argv[1], nullptr, nullptr, argv + 1, environ) != 0 ||
        waitpid(program, &status, 0) != program) {
        std::perror(argv[1]);
        return 1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
