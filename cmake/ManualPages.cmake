# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# The manual pages are made from the program's own --help and the sections in docs/manual, wherever
# help2man is installed.
find_program(HELP2MAN help2man)
if(NOT HELP2MAN)
    return()
endif()

set(manual_pages "")

# Writes a page of the name that the program and a command of it, if any, make.
function(add_manual_page COMMAND SUMMARY)
    string(JOIN "-" name veltra-virtual-adapter ${COMMAND})
    set(page ${PROJECT_BINARY_DIR}/${name}.1)
    set(sections ${PROJECT_SOURCE_DIR}/docs/manual/${name}.h2m)
    add_custom_command(OUTPUT ${page}
        COMMAND ${HELP2MAN} --no-info --name ${SUMMARY} --include ${sections} --output ${page}
            --source "libveltrasdk ${PROJECT_VERSION}" --version-string "${name} ${PROJECT_VERSION}"
            "./$<TARGET_FILE_NAME:veltra-virtual-adapter> ${COMMAND}"
        # help2man leaves its last argument to a shell; the directory's name may hold spaces.
        WORKING_DIRECTORY $<TARGET_FILE_DIR:veltra-virtual-adapter>
        DEPENDS veltra-virtual-adapter ${sections}
        VERBATIM)
    set(manual_pages ${manual_pages} ${page} PARENT_SCOPE)
endfunction()

add_manual_page("" "stand-in for a USB adapter for I3C, I2C, SPI, UART and GPIO")
add_manual_page(run "start a program that finds a virtual USB adapter")
add_manual_page(serve "keep a virtual USB adapter at a socket, or export it over USB/IP")
add_manual_page(attach "plug a virtual USB adapter into this machine's kernel")
add_manual_page(tell "let something happen to a virtual USB adapter")

add_custom_target(manual_pages ALL DEPENDS ${manual_pages})
install(FILES ${manual_pages}
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT virtual_adapter)
