# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# What veltra_discover_tests leaves to ctest, which sets `launcher` and `properties`. A program is asked
# for its tests without an adapter: before a test has begun it uses none.

# Of these functions, whatever their caller has.
cmake_policy(PUSH)
cmake_policy(VERSION 3.20...3.25)

function(veltra_add_filtered_test program name filter is_disabled)
    add_test(${name} ${launcher} ${program} --gtest_filter=${filter})
    set_tests_properties(${name} PROPERTIES ${properties})
    if(NOT is_disabled STREQUAL "")
        set_tests_properties(${name} PROPERTIES DISABLED TRUE)
    endif()
endfunction()

function(veltra_tests_of program adapter prefix)
    cmake_path(GET program FILENAME name)
    if(NOT EXISTS ${program})
        add_test("${prefix}${name} has not been built" ${program})
        return()
    endif()
    execute_process(COMMAND ${program} --gtest_list_tests
        RESULT_VARIABLE result OUTPUT_VARIABLE list ERROR_QUIET)
    if(NOT result EQUAL 0)
        # It fails again, and shows why.
        add_test("${prefix}${name} lists its tests" ${program} --gtest_list_tests)
        return()
    endif()
    # Behind a number sign stand values of parameters, with characters that mean something in a list.
    string(REGEX REPLACE " *#[^\n]*|[][;]" "" list "${list}")
    string(REPLACE "\n" ";" lines "${list}")
    foreach(line IN LISTS lines)
        if(line MATCHES "^([^ ]+)\\.$")
            set(suite ${CMAKE_MATCH_1})
            string(REGEX MATCH "(^|/)DISABLED_" is_suite_disabled ${suite})
            if(adapter STREQUAL "suite")
                veltra_add_filtered_test(${program} ${prefix}${suite} ${suite}.* "${is_suite_disabled}")
            endif()
        elseif(line MATCHES "^  ([^ ]+)$" AND adapter STREQUAL "test")
            set(test ${CMAKE_MATCH_1})
            string(REGEX MATCH "^DISABLED_" is_disabled ${test})
            veltra_add_filtered_test(${program} ${prefix}${suite}.${test} ${suite}.${test}
                "${is_suite_disabled}${is_disabled}")
        endif()
    endforeach()
endfunction()

cmake_policy(POP)
