# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# Installs the parent project in BINARY_DIR as it is, and once more with the library's files asked for.
function(install_and_list result)
    set(prefix ${BINARY_DIR}/prefix)
    file(REMOVE_RECURSE ${prefix})
    execute_process(COMMAND ${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${prefix}
        COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET)
    file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE ${prefix} ${prefix}/*)
    list(FILTER files EXCLUDE REGEX "^include/veltrasdk/|/veltrasdk-config-")
    set(${result} "${files}" PARENT_SCOPE)
endfunction()

function(expect seen)
    set(expected ${ARGN})
    list(SORT expected)
    list(SORT seen)
    if(NOT expected STREQUAL seen)
        message(FATAL_ERROR "expected: ${expected}\nseen:     ${seen}")
    endif()
endfunction()

install_and_list(files)
expect("${files}" bin/program)

execute_process(COMMAND ${CMAKE_COMMAND} -D VELTRASDK_INSTALL=ON ${BINARY_DIR}
    COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET)
install_and_list(files)
list(FILTER files EXCLUDE REGEX "/libveltrasdk\\.so\\.[0-9.]+$")
expect("${files}"
    bin/program
    lib/udev/rules.d/70-veltra-adapter.rules
    ${LIBRARY_DIR}/cmake/veltrasdk/veltrasdk-config.cmake
    ${LIBRARY_DIR}/libveltrasdk.so
    ${LIBRARY_DIR}/pkgconfig/veltrasdk.pc)
