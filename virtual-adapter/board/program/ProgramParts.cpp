// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/program/ProgramParts.hpp"

#include "board/program/part_lines.hpp"

#include <cstdio>
#include <utility>

namespace virtual_adapter {

namespace {

/// A program that has answered whatever it was asked so far, or none any more.
class Conversation {
public:
    Conversation(const Placement& part, const std::string& file, Complaint itsComplaint,
                 PartProcess::Patience itsPatience)
        : command(part.settings.get<Command>("command")),
          directory(part.directory),
          name(file + ":" + std::to_string(part.line) + ": the part '" + command.front() + "' "),
          complain(std::move(itsComplaint)),
          patience(itsPatience) {
        start();
    }

    void start() {
        attempt([this] {
            process.reset();
            process = std::make_unique<PartProcess>(command, directory, patience);
            readHello(process->ask(helloLine()));
        });
    }

    /// What @p read makes of the answer; @p otherwise when there is none.
    template <typename Read, typename Result>
    Result ask(const std::string& line, Read read, Result otherwise) {
        if (process != nullptr) {
            attempt([&] { otherwise = read(process->ask(line)); });
        }
        return otherwise;
    }

    [[nodiscard]] bool isOver() const { return process == nullptr; }

private:
    template <typename Attempt>
    void attempt(Attempt whatCanFail) {
        try {
            whatCanFail();
        } catch (const PartFailure& failure) {
            process.reset();
            complain(name + failure.what() + "; it does not acknowledge any more");
        }
    }

    const Command command;
    const std::string directory;
    const std::string name;
    const Complaint complain;
    const PartProcess::Patience patience;
    std::unique_ptr<PartProcess> process;
};

std::string setIn(Conversation& conversation, const std::string& name, const std::string& value) {
    return conversation.ask(setLine(name, value), readSetResult,
                            std::string("the program does not answer any more"));
}

class I2cProgram : public I2cTarget {
public:
    I2cProgram(const Placement& part, const std::string& file, const Complaint& complain,
               PartProcess::Patience patience)
        : conversation(part, file, complain, patience) {}

    bool start(I2cDirection direction) override {
        const std::string line = startLine(direction == I2cDirection::Read, started);
        started = conversation.ask(line, readAcknowledge, false);
        return started;
    }
    size_t writeMessage(const Bytes& bytes) override {
        return conversation.ask(
            writeLine(bytes),
            [&](const std::string& line) { return readAcknowledgedBytes(line, bytes.size()); },
            size_t{0});
    }
    Bytes readMessage(size_t count) override {
        return conversation.ask(
            readLine(count), [&](const std::string& line) { return readData(line, count); },
            Bytes(count, undriven));
    }
    bool write(uint8_t byte) override { return writeMessage({byte}) == 1; }
    uint8_t read() override { return readMessage(1).front(); }
    void stop() override {
        started = false;
        const auto nothing = [](const std::string& line) {
            readNothing(line);
            return true;
        };
        conversation.ask(stopLine(), nothing, false);
    }
    void cyclePower() override {
        started = false;
        if (!conversation.isOver()) {
            conversation.start();
        }
    }
    std::string set(const std::string& name, const std::string& value) override {
        return setIn(conversation, name, value);
    }

private:
    /// What is read while nobody drives the line.
    static constexpr uint8_t undriven = 0xFF;

    Conversation conversation;
    /// Whether the program acknowledged a START behind which no STOP has come.
    bool started = false;
};

class SpiProgram : public SpiTarget {
public:
    SpiProgram(const Placement& part, const std::string& file, const Complaint& complain,
               PartProcess::Patience patience)
        : conversation(part, file, complain, patience) {}

    [[nodiscard]] bool understands(SpiMode /*mode*/,
                                   SpiChipSelectPolarity /*polarity*/) const override {
        return true;
    }
    Bytes transfer(const Bytes& sent) override {
        return conversation.ask(
            transferLine(sent),
            [&](const std::string& line) { return readData(line, sent.size()); },
            Bytes(sent.size(), undrivenByte));
    }
    std::string set(const std::string& name, const std::string& value) override {
        return setIn(conversation, name, value);
    }

private:
    Conversation conversation;
};

} // namespace

void complainOnStandardError(const std::string& text) {
    (void)std::fprintf(stderr, "veltra-virtual-adapter: %s\n", text.c_str());
}

std::unique_ptr<I2cTarget> i2cProgramPart(const Placement& part, const std::string& file,
                                          const Complaint& complain,
                                          PartProcess::Patience patience) {
    return std::make_unique<I2cProgram>(part, file, complain, patience);
}

std::unique_ptr<SpiTarget> spiProgramPart(const Placement& part, const std::string& file,
                                          const Complaint& complain,
                                          PartProcess::Patience patience) {
    return std::make_unique<SpiProgram>(part, file, complain, patience);
}

} // namespace virtual_adapter
