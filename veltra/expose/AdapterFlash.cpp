// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/AdapterFlash.hpp"

#include <algorithm>

namespace veltra {

namespace {

/// In hertz; the controller goes no slower.
constexpr uint32_t slowest = 10'000;
constexpr uint8_t chipSelects = 4;

} // namespace

AdapterFlash::AdapterFlash(Session& over, Output& tells, const SpiSettings& atStart,
                           uint32_t clockLimit)
    : session(over),
      output(tells),
      configured(atStart),
      fastest(clockLimit),
      settings(atStart),
      spi(over, atStart) {}

void AdapterFlash::begin() {
    told.clear();
    setUp(configured);
}

std::optional<serprog::Bytes> AdapterFlash::transfer(const serprog::Bytes& send, size_t count) {
    try {
        if (count > 0) {
            return spi.query(send, count);
        }
        // A flash carries a command out only where the chip select rises right behind it.
        spi.command(send);
        return serprog::Bytes();
    } catch (Failure& failure) {
        // An adapter that was reset meanwhile needs it all again.
        session.forget("spi");
        session.forget("pins' supply");
        tell(std::move(failure));
        return std::nullopt;
    }
}

std::optional<uint32_t> AdapterFlash::setClock(uint32_t hertz) {
    const uint32_t clock = std::max(std::min(hertz, fastest), slowest);
    SpiSettings wanted = settings;
    wanted.clock = std::to_string(clock);
    return setUp(wanted) ? std::optional<uint32_t>(clock) : std::nullopt;
}

bool AdapterFlash::select(uint8_t chipSelect) {
    SpiSettings wanted = settings;
    wanted.chipSelect = chipSelect;
    return chipSelect < chipSelects && setUp(wanted);
}

bool AdapterFlash::setUp(const SpiSettings& wanted) {
    try {
        const Spi again(session, wanted); // the bus is one, however often it is set up
        settings = wanted;
        return true;
    } catch (Failure& failure) {
        tell(std::move(failure));
        return false;
    }
}

void AdapterFlash::tell(Failure failure) {
    if (failure.exitStatus == ExitStatus::Interrupted) {
        return;
    }
    failure.during = session.operation();
    const std::string text = describe(failure);
    if (text != told) {
        output.remark(text);
    }
    told = text;
}

} // namespace veltra
