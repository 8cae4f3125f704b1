# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# Sanitizers apply to everything in the build, so that no frame goes unwatched.
if(VELTRASDK_SANITIZE)
    add_compile_options(-fsanitize=${VELTRASDK_SANITIZE} -fno-omit-frame-pointer
                        -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VELTRASDK_SANITIZE})
endif()

# A sanitizer's runtime must be loaded before anything it watches: it comes first in every
# LD_PRELOAD.
set(VELTRASDK_SANITIZER_RUNTIME "")
foreach(sanitizer IN ITEMS address=libasan.so thread=libtsan.so)
    string(REPLACE "=" ";" sanitizer ${sanitizer})
    list(GET sanitizer 0 name)
    list(GET sanitizer 1 runtime)
    if(VELTRASDK_SANITIZE MATCHES ${name})
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime}
            OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        file(REAL_PATH ${runtime} VELTRASDK_SANITIZER_RUNTIME)
    endif()
endforeach()

# Rooms whose coverage is counted compile with these options: what the others run would be written down at
# each end of a process, and never read.
set(VELTRASDK_COVERAGE_OPTIONS "")
if(VELTRASDK_COVERAGE)
    set(VELTRASDK_COVERAGE_OPTIONS --coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()

if(VELTRASDK_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
