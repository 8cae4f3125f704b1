/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

#include <veltra-virtual-adapter/tell.h>

const char* tellInC(const char* stimulus);

const char* tellInC(const char* stimulus) {
    return veltraTell(stimulus);
}
