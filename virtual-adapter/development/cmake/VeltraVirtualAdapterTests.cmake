# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
#[=======================================================================[
Tests of ctest that run with a virtual adapter of their own.

veltra_add_test(NAME NAME COMMAND PROGRAM [ARGUMENT...] [how])
  One test: a program, which may be a target, in any language and framework.

veltra_discover_tests(TARGET [ADAPTER test|suite] [how] [TEST_PREFIX TEXT])
  The tests of a program of GoogleTest, found when ctest starts.
  ADAPTER test   a process and an adapter for each test. So it is unless given.
  ADAPTER suite  a process and an adapter for each test suite, which is one test of ctest.

how is:
  BOARD FILE              the board; relative to the current source directory
  OPTIONS OPTION...       further options of `veltra-virtual-adapter run`, such as --model high-speed
  JOIN SOCKET             instead of both, and of ADAPTER: the adapter that `veltra-virtual-adapter
                          serve --socket SOCKET` keeps, whose tests run one after the other; relative
                          to the current binary directory
  WORKING_DIRECTORY DIRECTORY
  PROPERTIES NAME VALUE...   properties of the tests
#]=======================================================================]

# Of these functions, whatever their caller has.
cmake_policy(PUSH)
cmake_policy(VERSION 3.20...3.25)

# Makes of HOW_... the LAUNCHER and the TEST_PROPERTIES.
macro(veltra_read_how function)
    if(HOW_UNPARSED_ARGUMENTS OR HOW_KEYWORDS_MISSING_VALUES)
        string(JOIN " " unclear ${HOW_UNPARSED_ARGUMENTS} ${HOW_KEYWORDS_MISSING_VALUES})
        message(FATAL_ERROR "${function}: what is meant by '${unclear}'?")
    endif()
    if(NOT HOW_WORKING_DIRECTORY)
        set(HOW_WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
    endif()
    set(TEST_PROPERTIES WORKING_DIRECTORY ${HOW_WORKING_DIRECTORY})
    set(LAUNCHER $<TARGET_FILE:veltra::virtual-adapter> run)
    if(HOW_JOIN)
        if(HOW_BOARD OR HOW_OPTIONS OR HOW_ADAPTER)
            message(FATAL_ERROR "${function}: JOIN takes an adapter as it is; "
                                "ADAPTER, BOARD and OPTIONS do not go with it")
        endif()
        cmake_path(ABSOLUTE_PATH HOW_JOIN BASE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} NORMALIZE)
        list(APPEND LAUNCHER --join ${HOW_JOIN})
        # One program at a time has an adapter open.
        list(APPEND TEST_PROPERTIES RESOURCE_LOCK ${HOW_JOIN})
    endif()
    if(HOW_BOARD)
        cmake_path(ABSOLUTE_PATH HOW_BOARD BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
        list(APPEND LAUNCHER --board ${HOW_BOARD})
    endif()
    list(APPEND LAUNCHER ${HOW_OPTIONS} --)
    if(HOW_PROPERTIES)
        string(APPEND TEST_PROPERTIES ";${HOW_PROPERTIES}")
    endif()
endmacro()

function(veltra_add_test)
    cmake_parse_arguments(PARSE_ARGV 0 HOW "" "NAME;BOARD;JOIN;WORKING_DIRECTORY"
        "COMMAND;OPTIONS;PROPERTIES")
    veltra_read_how(veltra_add_test)
    if(NOT HOW_NAME OR NOT HOW_COMMAND)
        message(FATAL_ERROR "veltra_add_test needs NAME and COMMAND")
    endif()
    list(POP_FRONT HOW_COMMAND program)
    if(TARGET ${program})
        set(program $<TARGET_FILE:${program}>)
    endif()
    add_test(NAME ${HOW_NAME} COMMAND ${LAUNCHER} ${program} ${HOW_COMMAND})
    set_tests_properties(${HOW_NAME} PROPERTIES ${TEST_PROPERTIES})
endfunction()

function(veltra_discover_tests target)
    cmake_parse_arguments(PARSE_ARGV 1 HOW "" "ADAPTER;TEST_PREFIX;BOARD;JOIN;WORKING_DIRECTORY"
        "OPTIONS;PROPERTIES")
    veltra_read_how(veltra_discover_tests)
    if(NOT TARGET ${target})
        message(FATAL_ERROR "veltra_discover_tests: there is no target ${target}")
    endif()
    if(NOT HOW_ADAPTER)
        set(HOW_ADAPTER test)
    elseif(NOT HOW_ADAPTER MATCHES "^(test|suite)$")
        message(FATAL_ERROR "veltra_discover_tests: an ADAPTER is for each test or suite, not ${HOW_ADAPTER}")
    endif()
    get_property(configurations GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
    # It may be called again, for tests in other ways.
    get_property(count TARGET ${target} PROPERTY VELTRA_DISCOVERIES)
    math(EXPR count "0${count} + 1")
    set_property(TARGET ${target} PROPERTY VELTRA_DISCOVERIES ${count})
    set(tests ${CMAKE_CURRENT_BINARY_DIR}/${target}_veltra_tests_${count})
    set(generated ${tests}.cmake)
    if(configurations)
        set(generated ${tests}-$<CONFIG>.cmake)
        file(WRITE ${tests}.cmake
            "include([==[${tests}-]==]\${CTEST_CONFIGURATION_TYPE}.cmake OPTIONAL)\n")
    endif()
    file(GENERATE OUTPUT ${generated} CONTENT
"include([==[${CMAKE_CURRENT_FUNCTION_LIST_DIR}/VeltraVirtualAdapterDiscovery.cmake]==])
set(launcher [==[${LAUNCHER}]==])
set(properties [==[${TEST_PROPERTIES}]==])
veltra_tests_of([==[$<TARGET_FILE:${target}>]==] ${HOW_ADAPTER} [==[${HOW_TEST_PREFIX}]==])
")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${tests}.cmake)
endfunction()

cmake_policy(POP)
