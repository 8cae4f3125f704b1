# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# Debian wants changelogs and manual pages compressed, without a time stamp.
file(GLOB_RECURSE documents
    ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/changelog
    ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/veltra*.1)
execute_process(COMMAND gzip -9 --no-name ${documents} COMMAND_ERROR_IS_FATAL ANY)
