// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/boards.hpp"

#include <iostream>
#include <memory>
#include <stdexcept>
#include <utility>

namespace virtual_adapter {

ReadBoard readBoard(const std::string& path) {
    BoardFile file(path);
    std::vector<ScheduledStimulus> schedule;
    Problems problems(path);
    for (const TimedStimulus& timed : file.stimuli()) {
        try {
            schedule.push_back({timed.request, parseStimulus(timed.text)});
        } catch (const std::invalid_argument& error) {
            problems.add(timed.line, std::string("tell: ") + error.what());
        }
    }
    problems.tell();
    return {std::move(file), std::move(schedule)};
}

void putOnBoard(AdapterSettings& settings, const std::string& path) {
    ReadBoard read = readBoard(path);
    const auto file = std::make_shared<const BoardFile>(std::move(read.file));
    settings.makeBoard = [file] { return file->build(); };
    settings.schedule = std::move(read.schedule);
    settings.complain = [path](const std::string& complaint) {
        std::cerr << "veltra-virtual-adapter: " + path + ": " + complaint + "\n" << std::flush;
    };
}

} // namespace virtual_adapter
