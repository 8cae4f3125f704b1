// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Capturing.hpp"

#include "Failure.hpp"
#include "Restart.hpp"

#include "launch/StartFailure.hpp"
#include "launch/preloading.hpp"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <unistd.h>

namespace veltra {

namespace {

namespace fs = std::filesystem;

const char* const fileVariable = "VELTRA_CAPTURE";
const char* const optionName = "--capture";

/// Every section of a pcapng file begins with these.
constexpr unsigned char sectionStart[] = {0x0A, 0x0D, 0x0D, 0x0A};

launch::StartFailure cannotWrite(const fs::path& file, const std::string& why) {
    return {launch::cannotSetUp, "cannot write " + file.string() + ": " + why};
}

void requireAccess(const fs::path& file, const fs::path& checked, int mode) {
    if (access(checked.c_str(), mode) != 0) {
        throw cannotWrite(file, std::generic_category().message(errno));
    }
}

/// The program would go on without a capture: whoever asks for one is told before.
void requireWritable(const fs::path& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) {
        requireAccess(file, file.parent_path(), W_OK | X_OK);
        return;
    }
    if (fs::is_directory(status)) {
        throw cannotWrite(file, "it is a directory");
    }
    requireAccess(file, file, W_OK);
    std::ifstream stream;
    if (fs::is_regular_file(status)) {
        stream.open(file, std::ios::binary);
    }
    for (const unsigned char expected : sectionStart) {
        const int byte = stream.is_open() ? stream.get() : std::ifstream::traits_type::eof();
        if (byte != std::ifstream::traits_type::eof() && byte != expected) {
            throw cannotWrite(file, "it holds something that is no capture");
        }
    }
}

[[noreturn]] void start(const std::string& file, const std::vector<std::string>& program) {
    const fs::path path = fs::absolute(file).lexically_normal();
    requireWritable(path);
    launch::setEnvironment(fileVariable, path);
    launch::preload(launch::findLibrary(VELTRA_CAPTURE_LIBRARY, VELTRA_PRELOAD_DIRECTORY),
                    launch::PreloadPlace::First);
    launch::execute(program);
}

} // namespace

void startCaptured(const std::string& file, const std::vector<std::string>& program) {
    try {
        forgetTyped();
        start(file, program);
    } catch (const launch::StartFailure& failure) {
        throw Failure(ExitStatus{failure.exitStatus}, "start", failure.what());
    }
}

void restartCaptured(const std::vector<std::string>& words, const std::string& file) {
    std::vector<std::string> program{thisProgram()};
    const std::vector<std::string> others = withoutOption(words, optionName, true);
    program.insert(program.end(), others.begin(), others.end());
    try {
        rememberTyped({optionName, file});
        start(file, program);
    } catch (const launch::StartFailure& failure) {
        throw Failure(ExitStatus::Refused, "start", failure.what());
    }
}

} // namespace veltra
