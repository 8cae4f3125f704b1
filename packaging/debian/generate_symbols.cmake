# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# Other packages depend on the oldest libveltrasdk1 that has every symbol they use.
file(GLOB library ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/library${CPACK_PACKAGING_INSTALL_PREFIX}/lib/*/libveltrasdk.so.*.*)
execute_process(
    COMMAND dpkg-gensymbols -c4 -q -p${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} -v${CPACK_PACKAGE_VERSION}
        -e${library} -I${CMAKE_CURRENT_LIST_DIR}/${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME}.symbols
        -O${CPACK_VELTRASDK_SYMBOLS}
    COMMAND_ERROR_IS_FATAL ANY)
