# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# One switch for each component that is not the library, on where this project is the top level.
include(CMakeDependentOption)

# Elsewhere BUILD_TESTING means the other project's tests, and is left to it.
if(PROJECT_IS_TOP_LEVEL)
    option(BUILD_TESTING "Build the tests and the benchmarks" ON)
endif()

option(VELTRASDK_BUILD_VIRTUAL_ADAPTER "Build the virtual adapter" ${PROJECT_IS_TOP_LEVEL})
option(VELTRASDK_BUILD_VELTRA "Build veltra, the program for the command line" ${PROJECT_IS_TOP_LEVEL})
option(VELTRASDK_BUILD_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(VELTRASDK_INSTALL "Install what is built, with its CMake package, pkg-config file and udev rule"
       ${PROJECT_IS_TOP_LEVEL})
cmake_dependent_option(VELTRASDK_BUILD_TESTS "Build the tests"
    ${PROJECT_IS_TOP_LEVEL} "BUILD_TESTING OR NOT PROJECT_IS_TOP_LEVEL" OFF)
cmake_dependent_option(VELTRASDK_BUILD_BENCHMARKS "Build the benchmarks"
    ${PROJECT_IS_TOP_LEVEL} "BUILD_TESTING OR NOT PROJECT_IS_TOP_LEVEL" OFF)

option(VELTRASDK_COVERAGE "Instrument for gcov" OFF)
option(VELTRASDK_FUZZ "Build the fuzz targets with libFuzzer; needs clang" OFF)
set(VELTRASDK_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")

foreach(component IN ITEMS VELTRASDK_BUILD_VIRTUAL_ADAPTER VELTRASDK_BUILD_VELTRA VELTRASDK_BUILD_EXAMPLES
        VELTRASDK_INSTALL)
    if(VELTRASDK_BUILD_TESTS AND NOT ${component})
        message(FATAL_ERROR "The tests run the virtual adapter, veltra, the examples and what is installed: "
                            "add -D ${component}=ON, or -D VELTRASDK_BUILD_TESTS=OFF")
    endif()
endforeach()
if(VELTRASDK_FUZZ AND NOT VELTRASDK_BUILD_VIRTUAL_ADAPTER)
    message(FATAL_ERROR "The virtual adapter is among the fuzz targets: "
                        "add -D VELTRASDK_BUILD_VIRTUAL_ADAPTER=ON, or -D VELTRASDK_FUZZ=OFF")
endif()
