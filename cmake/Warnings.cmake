# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# The warning set of the project; CMAKE_COMPILE_WARNING_AS_ERROR (set by the development presets)
# makes errors of them. Another project's compiler may know warnings that nobody here has met: there
# none is asked for, and none stops the build.
set(veltrasdk_warnings_c -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow)
set(veltrasdk_warnings_cxx ${veltrasdk_warnings_c}
    -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi)

add_library(veltrasdk_warnings INTERFACE)
if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(veltrasdk_warnings INTERFACE
        "$<$<COMPILE_LANGUAGE:C>:${veltrasdk_warnings_c}>"
        "$<$<COMPILE_LANGUAGE:CXX>:${veltrasdk_warnings_cxx}>")
else()
    set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
endif()
