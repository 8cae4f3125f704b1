// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Stands for the headers that tests/GoogleTests.cmake has compiled before.
