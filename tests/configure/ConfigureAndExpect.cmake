# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# Configures SOURCE_DIR afresh with OPTIONS. EXPECTATION is the word accepted, or a regular
# expression that the refusal must match.
file(REMOVE_RECURSE ${BINARY_DIR})
execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${BINARY_DIR} ${OPTIONS}
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
# CMake breaks the lines of a message.
string(REGEX REPLACE "[ \n]+" " " message "${output}")

if(EXPECTATION STREQUAL "accepted")
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "refused:\n${output}")
    endif()
elseif(result EQUAL 0)
    message(FATAL_ERROR "accepted, but this was expected: ${EXPECTATION}")
elseif(NOT message MATCHES "${EXPECTATION}")
    message(FATAL_ERROR "expected: ${EXPECTATION}\nseen:\n${output}")
endif()
