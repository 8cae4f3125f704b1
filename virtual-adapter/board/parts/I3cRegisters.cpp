// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I3cRegisters.hpp"

namespace virtual_adapter {

I3cRegisters::I3cRegisters(const I3cCharacteristics& ofThisTarget, const SettingValues& values)
    : I3cTarget(ofThisTarget, RegisterMap(values).contents(), RegisterMap(values).addressBytes()),
      registers(values) {}

void I3cRegisters::resetWholeTarget() {
    I3cTarget::resetWholeTarget();
    registers.reset();
}

} // namespace virtual_adapter
