# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""How Sphinx builds the reference of the Python package: scripts/docs does it."""

import pathlib
import re
import sys

PACKAGE = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(PACKAGE))

project = "veltrasdk"
copyright = "2026 The libveltrasdk authors"  # pylint: disable=redefined-builtin
release = re.search('^VERSION = "(.*)"', (PACKAGE / "veltrasdk/_native.py").read_text(), re.MULTILINE)[1]

extensions = ["sphinx.ext.autodoc", "sphinx.ext.doctest"]
html_theme = "furo"
html_title = f"veltrasdk {release} for Python"
exclude_patterns = []

autodoc_member_order = "bysource"
autodoc_typehints = "description"
autodoc_typehints_description_target = "documented"
# The constructors of what other objects make are no concern of readers.
autodoc_class_signature = "mixed"
autodoc_default_options = {"members": True, "undoc-members": False, "show-inheritance": True}

nitpicky = True
# What is named in signatures and is not documented: types of the standard library, and our own short names
# for what may be given.
nitpick_ignore_regex = [
    ("py:class", r"(collections|enum|os|types|typing|ctypes|_ctypes|asyncio|time)\..*"),
    ("py:.*", r"(veltrasdk\.)?([\w.]+\.)?_\w+(\..*)?|Same|Given|Result"),
    ("py:(class|exc|func)", r"[a-z]\w*|None|[A-Z]\w*(Error|Exception)|Exception|BytesLike|time\.monotonic"),
]

# The examples in docstrings run under a virtual adapter: tests/python does it.
doctest_global_setup = "import veltrasdk, veltrasdk.aio"
doctest_test_doctest_blocks = "default"
