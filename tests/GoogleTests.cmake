# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# A program of GoogleTest becomes tests of ctest: add_google_tests(TARGET [PREFIX TEXT] [ENVIRONMENT TEXT])
# Each test runs in a process of its own. Under a sanitizer or an emulator, whose start takes longer than
# most tests do, the program runs as a whole instead, in shards. The builds that only serve the tests compile it in
# few pieces; a development build compiles each file by itself.
include(GoogleTest)
include(${CMAKE_CURRENT_LIST_DIR}/JoinedTests.cmake)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(google_test_shards 4)
set(google_test_runner ${CMAKE_CURRENT_LIST_DIR}/run_google_tests.py)

# What the tests include most, compiled once for all programs, by a program of its own: it must be
# compiled with their flags. They add definitions only that none of these headers looks at.
add_executable(precompiled_test_headers ${CMAKE_CURRENT_LIST_DIR}/precompiled.cpp)
target_link_libraries(precompiled_test_headers PRIVATE
    GTest::gmock GTest::gtest_main Threads::Threads veltrasdk_warnings)
target_precompile_headers(precompiled_test_headers PRIVATE
    <algorithm> <array> <atomic> <chrono> <condition_variable> <filesystem> <functional> <future>
    <iostream> <map> <memory> <mutex> <optional> <string> <thread> <vector>
    <gmock/gmock.h> <gtest/gtest.h>)

function(add_google_tests target)
    cmake_parse_arguments(PARSE_ARGV 1 TESTS "" "PREFIX;ENVIRONMENT" "")
    target_precompile_headers(${target} REUSE_FROM precompiled_test_headers)
    if(VELTRASDK_SANITIZE OR VELTRASDK_COVERAGE)
        join_tests(${target})
    endif()
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX "\\.c$")
    set_source_files_properties(${sources} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    if(NOT VELTRASDK_SANITIZE AND NOT VELTRASDK_COVERAGE AND NOT CMAKE_CROSSCOMPILING)
        gtest_discover_tests(${target} TEST_PREFIX "${TESTS_PREFIX}" DISCOVERY_TIMEOUT 60
            PROPERTIES ENVIRONMENT "${TESTS_ENVIRONMENT}")
        return()
    endif()
    math(EXPR last_shard "${google_test_shards} - 1")
    foreach(shard RANGE ${last_shard})
        set(results ${CMAKE_CURRENT_BINARY_DIR}/google-${target}.${shard}.xml)
        # Not by its target: Python needs no emulator.
        add_test(NAME ${target}.${shard} COMMAND ${Python3_EXECUTABLE} ${google_test_runner}
            ${results} ${TESTS_ENVIRONMENT} ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${target}>)
        set_tests_properties(${target}.${shard} PROPERTIES
            ENVIRONMENT "GTEST_TOTAL_SHARDS=${google_test_shards};GTEST_SHARD_INDEX=${shard}"
            TIMEOUT 3600)
    endforeach()
endfunction()
