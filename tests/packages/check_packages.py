#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks what lintian does not see in the Debian packages: check_packages.py BUILD_DIRECTORY

The packages and the build that made them are in BUILD_DIRECTORY.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

build = pathlib.Path(sys.argv[1])
source = pathlib.Path(__file__).resolve().parents[2]

FLAGS = ["-fstack-clash-protection", "-fstack-protector-strong"]
FLAGS_OF = {"amd64": ["-fcf-protection=full"], "arm64": ["-mbranch-protection=standard"]}

# What is loaded into foreign programs uses nothing of libstdc++ that asserts.
WITHOUT_ASSERTIONS = re.compile(r"libveltra-.*-preload\.so")

# What the licences of these let us pass on without a notice, and headers of what is only linked.
WITHOUT_NOTICE = re.compile(r"libc6-dev|libgcc-\d+-dev|libstdc\+\+-\d+-dev|linux-libc-dev|libhidapi-dev")


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def binaries(directory):
    """The programs and shared libraries below a directory."""
    for file in sorted(directory.rglob("*")):
        if file.is_file() and not file.is_symlink() and file.open("rb").read(4) == b"\x7fELF":
            yield file


def unpack(directory):
    """Each package's name, and where its files are now."""
    for package in sorted(build.glob("*.deb")):
        name = output("dpkg-deb", "--field", package, "Package").strip()
        subprocess.run(["dpkg-deb", "--extract", package, directory / name], check=True)
        yield name, directory / name


def missing_flags(architecture, installed):
    """Compilations, as the unstripped binary names them, without a flag that all must have."""
    unstripped = next(
        file for file in build.rglob(installed.name) if file.is_file() and "_CPack_Packages" not in file.parts
    )
    producers = re.findall(r"DW_AT_producer.*: (GNU C.*)", output("readelf", "--debug-dump=info", unstripped))
    if not producers:
        yield f"{installed.name}: the build has no debugging information that would name its flags"
    for flag in FLAGS + FLAGS_OF.get(architecture, []):
        without = sum(flag not in producer.split() for producer in producers)
        if without:
            yield f"{installed.name}: {without} of {len(producers)} compilations without {flag}"


def weaknesses(architecture, installed):
    """What a packaged binary lacks of the protections that it was built for."""
    yield from missing_flags(architecture, installed)
    asserts = "__glibcxx_assert_fail" in output("nm", "--dynamic", installed)
    if not asserts and not WITHOUT_ASSERTIONS.fullmatch(installed.name):
        yield f"{installed.name}: no assertion of libstdc++ in it"
    if str(source).encode() in installed.read_bytes():
        yield f"{installed.name}: names the directory {source}"


def compiled_in():
    """The Debian packages whose headers became part of the packages."""
    headers = sorted(set(re.findall(r"^    (/usr/.*)", output("ninja", "-C", build, "-t", "deps"), re.MULTILINE)))
    owners = output("dpkg", "--search", *map(str, {pathlib.Path(header).resolve() for header in headers}))
    packages = {line.split(":")[0] for line in owners.splitlines()}
    return sorted(package for package in packages if not WITHOUT_NOTICE.fullmatch(package))


def faults():
    architecture = output("dpkg", "--print-architecture").strip()
    foreign = compiled_in()
    with tempfile.TemporaryDirectory() as directory:
        for name, files in unpack(pathlib.Path(directory)):
            notices = (files / "usr/share/doc" / name / "copyright").read_text()
            for package in foreign:
                if not re.search(rf"\b{re.escape(package)}\b", notices):
                    yield f"{name}: its copyright file has no notice of {package}, which is compiled in"
            for file in binaries(files):
                yield from weaknesses(architecture, file)


found = list(faults())
for fault in found:
    print(f"check_packages.py: {fault}", file=sys.stderr)
sys.exit(1 if found else 0)
