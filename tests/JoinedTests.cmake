# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# join_tests(TARGET): the files of tests of a program are compiled as few, in half of the time: what their headers
# hold is compiled once for several. Each stays in a name space of its own, so that two may give one name to two
# things, and all headers come before the first. A file that defines something in a name space of the project
# stays by itself, and so does whatever holds no tests.
function(join_tests target)
    get_target_property(sources ${target} SOURCES)
    set(headers "")
    foreach(source IN LISTS sources)
        get_filename_component(path ${source} ABSOLUTE)
        set(lines "")
        if(path MATCHES "_test\\.cpp$")
            file(STRINGS ${path} lines REGEX "^(#include |namespace [a-z])")
        endif()
        if(lines STREQUAL "" OR lines MATCHES "namespace ")
            set_source_files_properties(${source} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
            continue()
        endif()
        get_filename_component(directory ${path} DIRECTORY)
        foreach(line IN LISTS lines)
            string(REGEX REPLACE "#include \"(.*)\"" "${directory}/\\1" beside "${line}")
            if(EXISTS "${beside}")
                set(line "#include \"${beside}\"")
            endif()
            list(APPEND headers "${line}")
        endforeach()
    endforeach()
    list(REMOVE_DUPLICATES headers)
    list(JOIN headers "\n" headers)
    file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}_headers.hpp CONTENT "#pragma once\n${headers}\n" @ONLY)
    set_target_properties(${target} PROPERTIES
        UNITY_BUILD ON
        UNITY_BUILD_BATCH_SIZE 10
        UNITY_BUILD_UNIQUE_ID NAME_OF_FILE
        UNITY_BUILD_CODE_BEFORE_INCLUDE
            "#include \"${CMAKE_CURRENT_BINARY_DIR}/${target}_headers.hpp\"\nnamespace NAME_OF_FILE {"
        UNITY_BUILD_CODE_AFTER_INCLUDE "}")
    # What a fixture without a name outside of its file is the base of would be in several files, were it a header's.
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wno-subobject-linkage>)
endfunction()
