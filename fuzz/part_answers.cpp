// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What a part that is a program answers: any line is an answer of the form that is expected, or
// refused.
#include "Input.hpp"

#include "board/program/PartProcess.hpp"
#include "board/program/part_lines.hpp"

#include <algorithm>
#include <string>

using fuzzing::Input;
using fuzzing::require;
using namespace virtual_adapter;

namespace {

void read(uint8_t kind, size_t count, const std::string& line) {
    switch (kind % 6) {
    case 0:
        readHello(line);
        break;
    case 1:
        readAcknowledge(line);
        break;
    case 2:
        require(readAcknowledgedBytes(line, count) <= count,
                "no more than was sent is acknowledged");
        break;
    case 3:
        require(readData(line, count).size() == count, "as much is read as was asked for");
        break;
    case 4:
        readNothing(line);
        break;
    default:
        require(readSetResult(line).size() <= 200, "an error is one line");
        break;
    }
}

bool isPrintable(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char character) { return character >= ' ' && character <= '~'; });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const uint8_t kind = input.byte();
    const uint8_t count = input.byte();
    const size_t head = std::min<size_t>(size, 2);
    try {
        read(kind, count, std::string(data + head, data + size));
    } catch (const PartFailure& failure) {
        require(isPrintable(failure.what()), "a complaint can be printed");
    }
    return 0;
}
