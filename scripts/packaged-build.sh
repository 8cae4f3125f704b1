# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# The build of the packages; what is measured, and what runs in the virtual machine, is built in it too.

packagedBuild=build/package

# Exports Debian's own flags, hardened, and what later releases of Debian add to them. CMake knows no
# CPPFLAGS. The name of this directory, which may hold spaces, stays out of the result, also where a
# compiler cache is in use, which makes names relative so that builds elsewhere find them.
exportCompilerFlags() {
    local added
    export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
    eval "$(DEB_BUILD_MAINT_OPTIONS="hardening=+all reproducible=-fixfilepath,-fixdebugpath" \
        dpkg-buildflags --export=sh)"
    added="$CPPFLAGS -Werror=date-time -D_GLIBCXX_ASSERTIONS -fstack-clash-protection"
    added+=" -ffile-prefix-map=$(printf %q "$PWD")=. -ffile-prefix-map=../..=."
    case $(dpkg --print-architecture) in
        amd64) added+=" -fcf-protection" ;;
        arm64) added+=" -mbranch-protection=standard" ;;
    esac
    export CFLAGS="$CFLAGS $added" CXXFLAGS="$CXXFLAGS $added"
}

# configurePackaged OPTION...: configures that build as it is, or as the options change it. Where a program
# finds the library in the build leaves a hole of its length when it is installed: relative, it is as long
# in every directory.
configurePackaged() {
    exportCompilerFlags
    cmake -S . -B "$packagedBuild" -G Ninja -D CMAKE_BUILD_TYPE=RelWithDebInfo -D CMAKE_INSTALL_PREFIX=/usr \
        -D CMAKE_BUILD_RPATH_USE_ORIGIN=ON "$@"
}
