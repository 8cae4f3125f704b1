# The manual pages are made from the program's own --help, wherever help2man is installed.
find_program(HELP2MAN help2man)
if(NOT HELP2MAN)
    return()
endif()

set(manual_pages "")

# Writes the page NAME from the help of the program with ARGN behind it.
function(add_manual_page NAME)
    set(page ${PROJECT_BINARY_DIR}/${NAME}.1)
    list(JOIN ARGN " " command)
    add_custom_command(OUTPUT ${page}
        COMMAND ${HELP2MAN} --no-info --name "stand-in for a USB adapter"
            --version-string "veltra-virtual-adapter ${PROJECT_VERSION}" --output ${page}
            "$<TARGET_FILE:veltra-virtual-adapter> ${command}"
        DEPENDS veltra-virtual-adapter
        VERBATIM)
    set(manual_pages ${manual_pages} ${page} PARENT_SCOPE)
endfunction()

add_manual_page(veltra-virtual-adapter)
foreach(command IN ITEMS run serve attach)
    add_manual_page(veltra-virtual-adapter-${command} ${command})
endforeach()

add_custom_target(manual_pages ALL DEPENDS ${manual_pages})
install(FILES ${manual_pages}
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT virtual_adapter)
