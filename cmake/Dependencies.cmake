# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# What the library and the programs are built with. Whoever lacks something is told what to
# type; the tests name what they need where they need it.
set(HIDAPI_MIN_VERSION 0.13.1)

find_package(Threads REQUIRED)

find_package(PkgConfig QUIET)
if(NOT PkgConfig_FOUND)
    message(FATAL_ERROR "pkg-config, which finds hidapi, is missing. "
                        "On Debian: sudo apt install pkg-config")
endif()

# The name is ours alone: another project may use hidapi too, with another back end.
pkg_check_modules(VELTRASDK_HIDAPI IMPORTED_TARGET QUIET hidapi-libusb>=${HIDAPI_MIN_VERSION})
if(NOT VELTRASDK_HIDAPI_FOUND)
    message(FATAL_ERROR "libveltrasdk needs hidapi ${HIDAPI_MIN_VERSION} or later with its libusb back "
                        "end, which pkg-config does not find as hidapi-libusb. "
                        "On Debian 12 or later: sudo apt install libhidapi-dev. "
                        "Installed elsewhere: name the directory of hidapi-libusb.pc in PKG_CONFIG_PATH")
endif()

# hidapi's header alone, for what is linked with a stand-in for its functions or takes their place.
add_library(veltrasdk_hidapi_header INTERFACE)
target_include_directories(veltrasdk_hidapi_header SYSTEM INTERFACE ${VELTRASDK_HIDAPI_INCLUDE_DIRS})

if(VELTRASDK_BUILD_VIRTUAL_ADAPTER OR VELTRASDK_BUILD_VELTRA)
    find_package(CLI11 QUIET)
    find_package(nlohmann_json QUIET)
    if(NOT CLI11_FOUND OR NOT nlohmann_json_FOUND)
        message(FATAL_ERROR "The programs need CLI11 and nlohmann-json, which CMake does not both find. "
                            "On Debian: sudo apt install libcli11-dev nlohmann-json3-dev. Installed "
                            "elsewhere: add -D CLI11_DIR=DIRECTORY_OF_CLI11Config.cmake, or "
                            "-D nlohmann_json_DIR=... To build without the programs: add "
                            "-D VELTRASDK_BUILD_VIRTUAL_ADAPTER=OFF -D VELTRASDK_BUILD_VELTRA=OFF "
                            "-D BUILD_TESTING=OFF")
    endif()
endif()

if(VELTRASDK_BUILD_VIRTUAL_ADAPTER)
    pkg_check_modules(VELTRASDK_TOMLPLUSPLUS QUIET tomlplusplus>=3.3)
    if(NOT VELTRASDK_TOMLPLUSPLUS_FOUND)
        message(FATAL_ERROR "The virtual adapter needs toml++ 3.3 or later, which pkg-config does not "
                            "find as tomlplusplus. On Debian: sudo apt install libtomlplusplus-dev")
    endif()
    # Its header alone, which is all of it.
    add_library(veltrasdk_tomlplusplus INTERFACE)
    target_include_directories(veltrasdk_tomlplusplus SYSTEM INTERFACE
        ${VELTRASDK_TOMLPLUSPLUS_INCLUDE_DIRS})
endif()
