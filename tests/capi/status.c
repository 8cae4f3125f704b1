/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

#include <veltrasdk/status.h>

const char* statusNameInC(int16_t result);

const char* statusNameInC(int16_t result) {
    return veltraStatusName(result);
}
