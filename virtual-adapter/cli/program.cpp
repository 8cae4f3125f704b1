// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/program.hpp"

#include "cli/failure.hpp"
#include "launch/preloading.hpp"

#include <utility>

namespace virtual_adapter {

std::string findPreloadLibrary() {
    try {
        return launch::findLibrary(VELTRA_PRELOAD_LIBRARY, VELTRA_PRELOAD_DIRECTORY);
    } catch (const launch::StartFailure& failure) {
        fail(failure.exitStatus, failure.what());
    }
}

void startProgram(std::vector<std::string> program, const std::string& library,
                  const std::string& socket) {
    try {
        launch::setEnvironment(socketVariable, socket);
        launch::preload(library, launch::PreloadPlace::Last);
        launch::execute(std::move(program));
    } catch (const launch::StartFailure& failure) {
        fail(failure.exitStatus, failure.what());
    }
}

} // namespace virtual_adapter
