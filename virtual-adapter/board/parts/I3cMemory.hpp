// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/i3c/I3cTarget.hpp"

namespace virtual_adapter {

/// 4096 bytes of memory, reached in SDR and in HDR-DDR.
class I3cMemory : public I3cTarget {
public:
    static const I3cCharacteristics itsKind;

    explicit I3cMemory(const I3cCharacteristics& characteristics = itsKind);
};

} // namespace virtual_adapter
