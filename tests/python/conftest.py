# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What the package's tests share. They run under the virtual adapter, on the factory board."""

import os
import subprocess
import sys
from collections.abc import Callable, Iterator

import pytest

import veltrasdk

#: The program that runs another one under a virtual adapter.
VIRTUAL_ADAPTER = os.environ.get("VELTRA_VIRTUAL_ADAPTER", "veltra-virtual-adapter")
#: A limit that a loaded machine does not reach.
SECONDS = 60.0


@pytest.fixture(scope="module")
def adapter() -> Iterator[veltrasdk.Adapter]:
    """The adapter, opened once for a file of tests: closing takes its time."""
    with veltrasdk.Adapter(voltage=3.3, timeout=SECONDS) as opened:
        yield opened


@pytest.fixture(scope="module")
def model() -> str:
    """The adapter that the tests run under."""
    return os.environ.get("VELTRA_TEST_MODEL", "full-speed")


@pytest.fixture
def run_python() -> Callable[..., subprocess.CompletedProcess[str]]:
    """Runs a program of its own, under a virtual adapter of its own with these options."""

    def run(source: str, *options: str) -> subprocess.CompletedProcess[str]:
        command = [VIRTUAL_ADAPTER, "run", *options, "--", sys.executable, "-W", "error", "-c", source]
        return subprocess.run(command, capture_output=True, text=True, timeout=SECONDS, check=False)

    return run
