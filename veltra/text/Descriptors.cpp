// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "text/Descriptors.hpp"

#include "Failure.hpp"

namespace veltra {

namespace {

bool isDescriptor(const std::string& word) {
    return word.size() > 1 && (word[0] == 'r' || word[0] == 'w') && word[1] >= '0' &&
           word[1] <= '9';
}

I2cMessage parseDescriptor(const std::string& word, const std::vector<I2cMessage>& before) {
    const size_t at = word.find('@');
    const std::string length = word.substr(1, at == std::string::npos ? at : at - 1);
    I2cMessage message{};
    message.isRead = word[0] == 'r';
    message.length = static_cast<uint16_t>(parseNumber("length", length, 0, 0xFFFF));
    if (at != std::string::npos) {
        message.address = parseAddress(word.substr(at + 1));
    } else if (before.empty()) {
        throw Failure::ofUsage("'" + word + "' needs an address: " + word + "@0x50");
    } else {
        message.address = before.back().address;
    }
    return message;
}

/// The bytes of a word, filled up with it as its suffix says.
void append(I2cMessage& message, std::string word) {
    char suffix = 0;
    const bool number = word.find(':') == std::string::npos;
    if (number && word.size() > 1 && (word.back() == '=' || word.back() == '+')) {
        suffix = word.back();
        word.pop_back();
    }
    const Bytes bytes = parseBytes({word}, 0xFFFF);
    message.data.insert(message.data.end(), bytes.begin(), bytes.end());
    while (suffix != 0 && message.data.size() < message.length) {
        message.data.push_back(static_cast<uint8_t>(message.data.back() + (suffix == '+' ? 1 : 0)));
    }
}

void check(const I2cMessage& message) {
    if (!message.isRead && message.data.size() != message.length) {
        throw Failure::ofUsage("w" + std::to_string(message.length) + "@" +
                               hexNumber(message.address, 2) + " has " +
                               std::to_string(message.data.size()) + " bytes behind it");
    }
}

} // namespace

std::vector<I2cMessage> parseDescriptors(const std::vector<std::string>& words) {
    std::vector<I2cMessage> messages;
    for (const std::string& word : words) {
        const bool awaitsBytes = !messages.empty() && !messages.back().isRead &&
                                 messages.back().data.size() < messages.back().length;
        if (awaitsBytes) {
            append(messages.back(), word);
        } else if (isDescriptor(word)) {
            messages.push_back(parseDescriptor(word, messages));
        } else {
            throw Failure::ofUsage("'" + word + "' is no descriptor: w1@0x50 and r5 are");
        }
    }
    for (const I2cMessage& message : messages) {
        check(message);
    }
    return messages;
}

} // namespace veltra
