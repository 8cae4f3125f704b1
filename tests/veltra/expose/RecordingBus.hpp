// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "expose/serprog/SpiBus.hpp"

#include <cstdio>
#include <deque>
#include <string>

namespace serprog {

/// An SPI bus that writes down what is asked of it and answers what it was told to.
class RecordingBus : public SpiBus {
public:
    void begin() override { log += "begin\n"; }

    std::optional<Bytes> transfer(const Bytes& send, size_t count) override {
        log += "transfer ";
        for (size_t i = 0; i < send.size() && i < maxShown; ++i) {
            char digits[3];
            (void)std::snprintf(digits, sizeof digits, "%02x", unsigned{send[i]});
            log += digits;
        }
        log += ", " + std::to_string(count) + "\n";
        if (answers.empty()) {
            return Bytes(count, 0xFF);
        }
        std::optional<Bytes> answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }

    std::optional<uint32_t> setClock(uint32_t hertz) override {
        log += "clock " + std::to_string(hertz) + "\n";
        return clock;
    }

    bool select(uint8_t chipSelect) override {
        log += "select " + std::to_string(chipSelect) + "\n";
        return chipSelect < 4;
    }

    std::string log;
    std::deque<std::optional<Bytes>> answers;
    std::optional<uint32_t> clock = 1'000'000;

private:
    static constexpr size_t maxShown = 16;
};

} // namespace serprog
