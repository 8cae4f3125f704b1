# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""How Sphinx makes one site of docs/, of what Doxygen read in the headers, of the Python package and of what the
programs say of themselves. scripts/docs does it and says where those are."""

import os
import pathlib
import re
import sys

SITE = pathlib.Path(__file__).resolve().parent
ROOT = SITE.parents[1]
sys.path[:0] = [str(SITE), str(ROOT / "python")]

project = "libveltrasdk"
copyright = "2026 The libveltrasdk authors"  # pylint: disable=redefined-builtin
release = re.search(r"^project\(veltrasdk VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE)[1]

extensions = [
    "breathe",
    "myst_parser",
    "sphinx.ext.autodoc",
    "sphinx.ext.doctest",
    "sphinx_copybutton",
    "sphinx_inline_tabs",
    "commands",
    "pages",
    "theme",
]
exclude_patterns = ["manual", "site"]

html_theme = "furo"
html_title = f"libveltrasdk {release}"
html_static_path = ["static"]
html_css_files = ["site.css"]
html_copy_source = False
html_show_sphinx = False
smartquotes = False  # they close what they should open behind a markup
pygments_style = "friendly"
pygments_dark_style = "native"
toc_object_entries_show_parents = "hide"

# Markdown, as a forge shows it too: headings are anchors, pages are linked by their files.
myst_enable_extensions = ["colon_fence"]
myst_heading_anchors = 4
highlight_language = "none"
# What a person types is copied, what the prompt and the answer are is not.
copybutton_selector = "div:not(.highlight-text):not(.highlight-none) > div.highlight > pre"

# The C and C++ reference.
breathe_projects = {"veltrasdk": os.environ.get("VELTRASDK_XML", "")}
breathe_default_project = "veltrasdk"
breathe_default_members = ("members",)
breathe_domain_by_extension = {"h": "cpp", "hpp": "cpp"}
breathe_show_include = False

# The Python reference.
autodoc_member_order = "bysource"
autodoc_typehints = "description"
autodoc_typehints_description_target = "documented"
# The constructors of what other objects make are no concern of readers.
autodoc_class_signature = "mixed"
autodoc_default_options = {"members": True, "undoc-members": False, "show-inheritance": True}

nitpicky = True
# What is named in signatures and is not documented: types of the standard libraries, and our own short names
# for what may be given.
nitpick_ignore_regex = [
    ("py:class", r"(collections|enum|os|types|typing|ctypes|_ctypes|asyncio|time)\..*"),
    ("py:.*", r"(veltrasdk\.)?([\w.]+\.)?_\w+(\..*)?|Same|Given|Result"),
    ("py:(class|exc|func)", r"[a-z]\w*|None|[A-Z]\w*(Error|Exception)|Exception|BytesLike|time\.monotonic"),
    ("c(pp)?:identifier", r"u?int\d+_t|size_t|bool|std(::.*)?"),
]

# The examples in docstrings run under a virtual adapter: tests/python does it.
doctest_global_setup = "import veltrasdk, veltrasdk.aio"
doctest_test_doctest_blocks = "default"
