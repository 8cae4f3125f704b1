// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/check.hpp"

#include "board/BoardTable.hpp"
#include "cli/boards.hpp"
#include "cli/failure.hpp"

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace virtual_adapter {

namespace {

/// Of a board's file that is not right.
constexpr int notRight = 2;

void check(const std::string& file) {
    try {
        std::cout << boardTable(readBoard(file).file.description()) << std::flush;
    } catch (const BoardFileError& error) {
        std::cerr << error.what() << std::endl;
        throw ProcessEnd{notRight};
    } catch (const std::runtime_error& error) {
        fail(notRight, error.what());
    }
}

} // namespace

void addCheckCommand(command_line::Command app) {
    const command_line::Command command =
        app.addCommand("check", "Say what is wrong with a board's file, or print its buses");
    const auto file = std::make_shared<std::string>();
    command.addOption("FILE", *file, "The board's file").required();
    command.onChosen([file] { check(*file); });
}

} // namespace virtual_adapter
