// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What people and scripts type at veltra, and what a flash tells of itself: understood, or refused
// with a Failure.
#include "Input.hpp"

#include "Failure.hpp"
#include "Words.hpp"
#include "flash/Sfdp.hpp"
#include "i3c/Ccc.hpp"
#include "i3c/Target.hpp"
#include "text/Descriptors.hpp"
#include "text/ScriptLine.hpp"

#include <string>

using fuzzing::require;

namespace {

/// Words between line ends, none of which names a file or the standard input.
std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words(1);
    for (const char letter : text) {
        if (letter == '\n') {
            words.emplace_back();
        } else if (!words.back().empty() || (letter != '@' && letter != '-')) {
            words.back() += letter;
        }
    }
    return words;
}

void readTables(const std::string& text) {
    const veltra::SfdpReader read = [&](uint32_t address, size_t count) {
        const std::string part = address < text.size() ? text.substr(address, count) : "";
        return veltra::Bytes(part.begin(), part.end());
    };
    const veltra::FlashGeometry geometry = veltra::readSfdp(read);
    require(geometry.pageBytes > 0 && geometry.eraseBytes > 0, "pages and blocks hold something");
    require(geometry.bytes % geometry.eraseBytes == 0, "a flash is whole blocks");
}

void readWords(uint8_t kind, const std::string& text) {
    const std::vector<std::string> words = wordsOf(text);
    switch (kind % 8) {
    case 0:
        require(veltra::parseNumber("n", text, 3, 9) <= 9, "nothing is out of its range");
        break;
    case 1:
        require(veltra::parseBytes(words, 64).size() <= 64, "no more bytes than may be");
        break;
    case 2:
        for (const veltra::I2cMessage& message : veltra::parseDescriptors(words)) {
            require(message.isRead || message.data.size() == message.length, "a write is whole");
        }
        break;
    case 3:
        veltra::splitLine(text, {{"A", "b c"}});
        break;
    case 4:
        veltra::differenceOf(text, {1, 2, 3});
        break;
    case 5:
        veltra::parseTarget(text);
        break;
    case 6:
        veltra::parseCcc(words.front(), {words.begin() + 1, words.end()}, "", "");
        break;
    default:
        readTables(text);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string text(data + 1, data + size);
    try {
        readWords(data[0], text);
        (void)veltra::parseFrequency(text);
        (void)veltra::parseVolts(text);
    } catch (const veltra::Failure& failure) {
        require(!failure.text.empty(), "a refusal says why");
    }
    return 0;
}
