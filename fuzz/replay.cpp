// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Runs a fuzz target once over every file of the directories given: a corpus as a test.
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

std::vector<uint8_t> contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    stream.exceptions(std::ios::badbit | std::ios::failbit);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

size_t replay(const std::filesystem::path& directory) {
    size_t inputs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        const std::vector<uint8_t> input = contentOf(entry.path());
        std::printf("%s\n", entry.path().c_str());
        std::fflush(stdout); // names the input at which a run ends
        LLVMFuzzerTestOneInput(input.data(), input.size());
        ++inputs;
    }
    return inputs;
}

} // namespace

int main(int argc, char** argv) {
    try {
        size_t inputs = 0;
        for (int i = 1; i < argc; ++i) {
            inputs += replay(argv[i]);
        }
        std::printf("%zu inputs replayed\n", inputs);
        return inputs == 0 ? 1 : 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
