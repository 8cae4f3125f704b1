# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# What `cmake --install` puts where. Everything is relative to the prefix, so that an installed
# tree can be moved.
include(CMakePackageConfigHelpers)

set(veltrasdk_cmake_directory ${CMAKE_INSTALL_LIBDIR}/cmake/veltrasdk)
set(veltrasdk_pkgconfig_directory ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The library
install(TARGETS veltrasdk EXPORT veltrasdk
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT library NAMELINK_COMPONENT development)

# What programs are built with; the library is all that a CMake consumer needs to find.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/veltrasdk
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development)
install(EXPORT veltrasdk FILE veltrasdk-config.cmake NAMESPACE veltrasdk::
    DESTINATION ${veltrasdk_cmake_directory}
    COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/veltrasdk-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/veltrasdk-config-version.cmake
    DESTINATION ${veltrasdk_cmake_directory}
    COMPONENT development)

# The system's prefix is named as pkg-config knows it, so that no path that is searched anyway is printed.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(veltrasdk_pc_prefix /usr)
else()
    file(RELATIVE_PATH veltrasdk_pc_prefix
        ${CMAKE_INSTALL_PREFIX}/${veltrasdk_pkgconfig_directory} ${CMAKE_INSTALL_PREFIX})
    string(PREPEND veltrasdk_pc_prefix "\${pcfiledir}/")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/veltrasdk.pc.in ${PROJECT_BINARY_DIR}/veltrasdk.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/veltrasdk.pc
    DESTINATION ${veltrasdk_pkgconfig_directory}
    COMPONENT development)

if(VELTRASDK_BUILD_VELTRA)
    # Below another prefix than the system's the library is beside it.
    if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
        file(RELATIVE_PATH library_directory
            ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
        set_target_properties(veltra PROPERTIES INSTALL_RPATH $ORIGIN/${library_directory})
    endif()
    install(TARGETS veltra
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        COMPONENT veltra)
    install(TARGETS veltra-capture-preload veltra-devices-preload
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/veltra
        COMPONENT veltra)
    install(FILES ${PROJECT_SOURCE_DIR}/veltra/schema.json
        DESTINATION ${CMAKE_INSTALL_DATADIR}/veltra
        COMPONENT veltra)
    install(FILES ${PROJECT_SOURCE_DIR}/veltra/completion/veltra.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME veltra
        COMPONENT veltra)
endif()
if(VELTRASDK_BUILD_VIRTUAL_ADAPTER)
    install(TARGETS veltra-virtual-adapter EXPORT veltra-virtual-adapter
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        COMPONENT virtual_adapter)
    # What tests need of it comes with it: without the program they would be of no use.
    set(virtual_adapter_cmake_directory ${CMAKE_INSTALL_LIBDIR}/cmake/veltra-virtual-adapter)
    install(TARGETS veltra-virtual-adapter-tell EXPORT veltra-virtual-adapter)
    install(FILES ${PROJECT_SOURCE_DIR}/virtual-adapter/development/veltra-virtual-adapter/tell.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/veltra-virtual-adapter
        COMPONENT virtual_adapter)
    install(EXPORT veltra-virtual-adapter FILE veltra-virtual-adapter-targets.cmake NAMESPACE veltra::
        DESTINATION ${virtual_adapter_cmake_directory}
        COMPONENT virtual_adapter)
    file(WRITE ${PROJECT_BINARY_DIR}/veltra-virtual-adapter-config.cmake
        "include(\${CMAKE_CURRENT_LIST_DIR}/veltra-virtual-adapter-targets.cmake)\n"
        "include(\${CMAKE_CURRENT_LIST_DIR}/VeltraVirtualAdapterTests.cmake)\n")
    write_basic_package_version_file(${PROJECT_BINARY_DIR}/veltra-virtual-adapter-config-version.cmake
        COMPATIBILITY SameMajorVersion)
    install(FILES
        ${PROJECT_BINARY_DIR}/veltra-virtual-adapter-config.cmake
        ${PROJECT_BINARY_DIR}/veltra-virtual-adapter-config-version.cmake
        ${PROJECT_SOURCE_DIR}/virtual-adapter/development/cmake/VeltraVirtualAdapterDiscovery.cmake
        ${PROJECT_SOURCE_DIR}/virtual-adapter/development/cmake/VeltraVirtualAdapterTests.cmake
        DESTINATION ${virtual_adapter_cmake_directory}
        COMPONENT virtual_adapter)
    install(TARGETS veltra-virtual-adapter-preload
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/veltra-virtual-adapter
        COMPONENT virtual_adapter)
endif()
