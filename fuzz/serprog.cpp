// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What a client may send to the programmer of `veltra expose flash`, with a bus that refuses at
// times: how the bytes are cut into pieces makes no difference, and nothing is kept for ever.
#include "Input.hpp"

#include "expose/serprog/Programmer.hpp"

#include <numeric>
#include <utility>

using fuzzing::Bytes;
using fuzzing::Input;
using fuzzing::require;

namespace {

class Bus : public serprog::SpiBus {
public:
    explicit Bus(uint8_t whichToRefuse) : refused(whichToRefuse) {}

    void begin() override {}

    std::optional<Bytes> transfer(const Bytes& send, size_t count) override {
        require(send.size() + count <= maxBytes, "a transfer fits");
        require(!send.empty() || count > 0, "a transfer has bytes");
        ++transfers;
        read += count;
        if (read > maxRead || (refused != 0 && transfers % refused == 0)) {
            return std::nullopt;
        }
        // Counted up once: to write each byte of every read takes most of a run.
        static const Bytes counting = [] {
            Bytes bytes(maxBytes + UINT8_MAX);
            std::iota(bytes.begin(), bytes.end(), uint8_t{0});
            return bytes;
        }();
        const uint8_t* const first = counting.data() + static_cast<uint8_t>(transfers);
        return Bytes(first, first + count);
    }

    std::optional<uint32_t> setClock(uint32_t hertz) override {
        require(hertz > 0, "a clock ticks");
        return hertz % 2 == 0 ? std::optional<uint32_t>(hertz) : std::nullopt;
    }

    bool select(uint8_t chipSelect) override { return chipSelect < 4; }

private:
    /// Then it refuses: what many long reads bring would be compared for ever.
    static constexpr size_t maxRead = 2 * maxBytes;

    size_t transfers = 0;
    size_t read = 0;
    uint8_t refused;
};

/// Longer than any command that is carried out.
constexpr size_t maxWords = 0x9000;
constexpr size_t maxCommands = 1000;

/// What a client reads that says all this, in pieces of a size.
Bytes conversation(uint8_t refused, const Bytes& words, size_t piece) {
    Bus bus(refused);
    serprog::Programmer programmer(bus);
    Bytes& answers = programmer.output();
    size_t commands = 0;
    for (size_t at = 0; at < words.size() && commands < maxCommands;) {
        require(programmer.wantsInput(), "what can be carried out is");
        const size_t size = std::min(piece, words.size() - at);
        programmer.receive(words.data() + at, size);
        at += size;
        size_t answered = answers.size();
        while (commands < maxCommands && programmer.step()) {
            ++commands;
            require(answers.size() > answered, "every command has an answer");
            answered = answers.size();
        }
        require(answers.size() == answered, "no answer without a command");
    }
    return std::move(answers);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const uint8_t refused = input.byte();
    const size_t piece = size_t{1} + input.byte();
    Bytes words;
    while (!input.isEmpty()) {
        const Bytes more = input.bytes();
        words.insert(words.end(), more.begin(), more.end());
    }
    words.resize(std::min(words.size(), maxWords));
    require(conversation(refused, words, piece) == conversation(refused, words, 4096),
            "the same bytes have the same answers");
    return 0;
}
