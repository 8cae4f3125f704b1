// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Output.hpp"

#include <veltrasdk/status.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace veltra {

namespace {

constexpr size_t barWidth = 30;

Json errorObject(const Failure& failure) {
    Json error;
    error["op"] = failure.during ? Json(failure.during->name) : Json(nullptr);
    error["kind"] = failure.kind;
    error["status"] = failure.status ? Json(*failure.status) : Json(nullptr);
    const char* const name = failure.status ? veltraStatusName(uint16_t{*failure.status}) : nullptr;
    error["name"] = name != nullptr  ? Json(name)
                    : failure.status ? Json(hexNumber(*failure.status, 4))
                                     : Json(nullptr);
    error["hint"] = failure.hint.empty() ? Json(nullptr) : Json(failure.hint);
    if (!failure.status) {
        error["message"] = failure.text;
    }
    if (!failure.place.empty()) {
        error["place"] = failure.place;
    }
    if (!failure.progress.empty()) {
        error["progress"] = failure.progress;
    }
    return error;
}

} // namespace

Output::Output(const Options& given)
    : options(&given),
      showsProgress(!given.quiet && !given.json && !given.raw && !given.dryRun &&
                    isatty(STDERR_FILENO) == 1) {}

void Output::print(const std::string& text) {
    if (options->dryRun) {
        return; // nothing has been read that could be shown
    }
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
        std::fflush(stdout) != 0) {
        throw Failure(ExitStatus::Refused, "file",
                      std::string("cannot write the standard output: ") + std::strerror(errno));
    }
}

void Output::result(const Json& object, const std::string& text) {
    if (options->json) {
        print(object.text() + "\n");
    } else if (!text.empty()) {
        print(text + "\n");
    }
}

void Output::bytes(Json object, const Bytes& data, const std::string& text) {
    lastBytes = data;
    if (options->raw && !options->json) {
        print(std::string(data.begin(), data.end()));
        return;
    }
    object["data"] = hexDigits(data);
    result(object, text);
}

void Output::verbatim(const Bytes& data) {
    print(std::string(data.begin(), data.end()));
}

void Output::lost(uint64_t count) {
    result({{"event", "lost"}, {"count", count}}, std::to_string(count) + " lost");
}

void Output::line(const std::string& text) {
    if (!options->json && !options->raw) {
        print(text + "\n");
    }
}

void Output::rehearse(const std::string& request) {
    (void)std::printf("> %s\n", request.c_str());
    (void)std::fflush(stdout);
}

void Output::trace(const std::string& text) {
    if (options->verbose) {
        (void)std::fprintf(stderr, "%s\n", text.c_str());
    }
}

void Output::remark(const std::string& text) {
    if (!options->quiet) {
        (void)std::fprintf(stderr, "veltra: %s\n", text.c_str());
    }
}

void Output::progress(const std::string& what, size_t done, size_t total) {
    if (!showsProgress || total == 0) {
        return;
    }
    const size_t filled = done * barWidth / total;
    const std::string bar = std::string(filled, '#') + std::string(barWidth - filled, '.');
    progressShown = done < total;
    (void)std::fprintf(stderr, "\r%-9s [%s] %zu of %zu bytes%s", what.c_str(), bar.c_str(), done,
                       total, progressShown ? "" : "\n");
}

void Output::failure(const Failure& failure) {
    (void)std::fflush(stdout);
    if (progressShown) {
        (void)std::fputc('\n', stderr);
        progressShown = false;
    }
    if (options->json) {
        const Json line = {{"error", errorObject(failure)}};
        (void)std::fprintf(stderr, "%s\n", line.text().c_str());
    } else {
        (void)std::fprintf(stderr, "veltra: %s\n", describe(failure).c_str());
    }
}

std::string describe(const Failure& failure) {
    std::string text = failure.place.empty() ? "" : failure.place + ": ";
    if (failure.during && !failure.during->subject.empty()) {
        text += failure.during->subject + ": ";
    }
    text += failure.text;
    if (!failure.progress.empty()) {
        text += "; " + failure.progress;
    }
    return failure.hint.empty() ? text : text + ". " + failure.hint;
}

} // namespace veltra
