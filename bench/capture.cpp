// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Prints what capturing adds to a report, in microseconds, one "name value" a line: the time that
// the preloaded library spends on a written and a read report, records and system calls included.
#include "preload/CaptureRecorder.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int reports = 20'000;

/// The median of a request's report and a response's.
double microsecondsPerReport(size_t reportSize) {
    std::string path = "/tmp/bench-capture-XXXXXX";
    const int file = mkstemp(path.data());
    if (file < 0 || setenv("VELTRA_CAPTURE", path.c_str(), 1) != 0) {
        return -1;
    }
    close(file);
    preload::CaptureRecorder recorder;
    const int handle = 0;
    recorder.opened(&handle, "1-1:1.0");
    const std::vector<uint8_t> output(reportSize + 1); // and its identifier
    const std::vector<uint8_t> input(reportSize, 0x55);
    std::vector<double> times;
    for (int i = 0; i < reports; ++i) {
        const auto start = Clock::now();
        const uint64_t transfer = recorder.writing(&handle, output.data(), output.size());
        recorder.written(&handle, transfer, static_cast<int>(output.size()));
        recorder.reading(&handle, input.size());
        recorder.haveRead(&handle, input.data(), input.size(), static_cast<int>(input.size()));
        times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count() /
                        2);
    }
    recorder.closing(&handle);
    unlink(path.c_str());
    std::nth_element(times.begin(), times.begin() + reports / 2, times.end());
    return times[reports / 2];
}

} // namespace

int main() {
    for (const size_t reportSize : {64U, 1024U}) {
        std::cout << "capture_us_per_report_" << reportSize << ' '
                  << microsecondsPerReport(reportSize) << '\n';
    }
    return 0;
}
