// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <dlfcn.h>

namespace preload {

/// The function that stands behind the one of this library: the C library's, or that of another
/// library which is preloaded too.
///
/// It is looked for at the first call: programs and libraries call it before any constructor has
/// run. Two threads that do so find the same.
template <typename Function>
Function* following(Function*& known, const char* name) {
    Function* found = __atomic_load_n(&known, __ATOMIC_RELAXED);
    if (found == nullptr) {
        found = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
        __atomic_store_n(&known, found, __ATOMIC_RELAXED);
    }
    return found;
}

} // namespace preload

/// The function of that name behind the one that is being defined, whose type it has.
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): it takes a name for a name and for a text.
#define VELTRA_FOLLOWING(name)                                                                     \
    ([] {                                                                                          \
        static decltype(name)* known = nullptr;                                                    \
        return preload::following(known, #name);                                                   \
    }())
