// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "text/AddressGrid.hpp"

#include <algorithm>

namespace veltra {

namespace {

constexpr uint8_t firstAsked = 0x08;
constexpr uint8_t lastAsked = 0x77;

std::string cell(const Bytes& found, unsigned address) {
    if (std::find(found.begin(), found.end(), address) != found.end()) {
        return " " + hexNumber(address, 2).substr(2);
    }
    return address < firstAsked || address > lastAsked ? "   " : " --";
}

} // namespace

std::string addressGrid(const Bytes& found) {
    std::string grid = "     0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f";
    for (unsigned row = 0x00; row < 0x80; row += 0x10) {
        std::string line = hexNumber(row, 2).substr(2) + ":";
        for (unsigned column = 0; column < 0x10; ++column) {
            line += cell(found, row + column);
        }
        grid += "\n" + line.substr(0, line.find_last_not_of(' ') + 1);
    }
    return grid;
}

} // namespace veltra
