# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# The manual pages are made from the program's own --help and the sections in docs/manual, wherever
# help2man is installed.
find_program(HELP2MAN help2man)
if(NOT HELP2MAN)
    return()
endif()

set(manual_pages "")

# Writes a page of the name that the program and the words of a command of it, if any, make.
function(add_page_of PROGRAM COMMAND SUMMARY PAGES)
    string(JOIN "-" name ${PROGRAM} ${COMMAND})
    string(REPLACE ";" " " words "${COMMAND}")
    set(page ${PROJECT_BINARY_DIR}/${name}.1)
    set(sections ${PROJECT_SOURCE_DIR}/docs/manual/${name}.h2m)
    add_custom_command(OUTPUT ${page}
        COMMAND ${HELP2MAN} --no-info --name ${SUMMARY} --include ${sections} --output ${page}
            --source "libveltrasdk ${PROJECT_VERSION}" --version-string "${name} ${PROJECT_VERSION}"
            "./$<TARGET_FILE_NAME:${PROGRAM}> ${words}"
        # help2man leaves its last argument to a shell; the directory's name may hold spaces.
        WORKING_DIRECTORY $<TARGET_FILE_DIR:${PROGRAM}>
        DEPENDS ${PROGRAM} ${sections}
        VERBATIM)
    set(${PAGES} ${${PAGES}} ${page} PARENT_SCOPE)
endfunction()

macro(add_manual_page COMMAND SUMMARY)
    add_page_of(veltra-virtual-adapter "${COMMAND}" ${SUMMARY} manual_pages)
endmacro()

add_manual_page("" "stand-in for a USB adapter for I3C, I2C, SPI, UART and GPIO")
add_manual_page(run "start a program that finds a virtual USB adapter")
add_manual_page(serve "keep a virtual USB adapter at a socket, or export it over USB/IP")
add_manual_page(attach "plug a virtual USB adapter into this machine's kernel")
add_manual_page(replay "start a program with an adapter that answers as a captured one did")
add_manual_page(tell "let something happen to a virtual USB adapter")

add_manual_page(check "say what is wrong with a board of the virtual adapter")

set(veltra_pages "")
if(VELTRASDK_BUILD_VELTRA)
    add_page_of(veltra "" "drive a USB adapter for I3C, I2C, SPI, UART and GPIO" veltra_pages)
    add_page_of(veltra i2c "read, write, scan and program on I2C" veltra_pages)
    add_page_of(veltra i3c "initialise and use an I3C bus" veltra_pages)
    add_page_of(veltra spi "transfer on SPI, read and write flashes" veltra_pages)
    add_page_of(veltra uart "send, receive, and a terminal" veltra_pages)
    add_page_of(veltra gpio "read, drive and configure pins" veltra_pages)
    add_page_of(veltra watch "show what the adapter sends by itself" veltra_pages)
    add_page_of(veltra expose "lend a bus to programs that know no adapter" veltra_pages)
    add_page_of(veltra run "start a program that finds the adapter's buses as Linux's devices" veltra_pages)
    add_page_of(veltra batch "carry out a script over one connection" veltra_pages)
    add_page_of(veltra capture "keep what a program says with adapters for Wireshark" veltra_pages)
    install(FILES ${veltra_pages}
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
        COMPONENT veltra)
endif()

add_custom_target(manual_pages ALL DEPENDS ${manual_pages} ${veltra_pages})
install(FILES ${manual_pages}
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT virtual_adapter)
