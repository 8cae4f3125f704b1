# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Makes of plain Markdown, which every forge shows, what a site has on top: an order of pages, and tabs.

The pages that the lists and tables of an index.md link to follow it in that order, below its headings. A
line that is nothing but `**C**`, or another of LANGUAGES, begins a tab, which ends at the next such line, at a
heading, or at the comment `<!-- end of tabs -->`.
"""

import re

LANGUAGES = ("C", "C++", "Python", "Shell")

FENCE = re.compile(r"^ *```")
HEADING = re.compile(r"^#{1,6} ")
SECTION = re.compile(r"^## +(.*)")
LABEL = re.compile(r"^\*\*([^*]+)\*\*$")
ENTRY = re.compile(r"^(?:[-*] |\d+\. |\| )")
PAGE = re.compile(r"\]\((?!\w+:)([^)#\s]+)\.(?:md|rst)\)")


def outside_of_fences(lines):
    """Yields every line, and whether it is text, as against what stands in a block."""
    text = True
    for line in lines:
        fence = FENCE.match(line)
        yield line, text and not fence
        text ^= bool(fence)


def with_tabs(lines):
    tab_is_open = False
    for line, is_text in outside_of_fences(lines):
        label = LABEL.match(line) if is_text else None
        begins = label is not None and label[1] in LANGUAGES
        ends = is_text and (HEADING.match(line) or line == "<!-- end of tabs -->")
        if tab_is_open and (begins or ends):
            yield "::::"
            yield ""
            tab_is_open = False
        if begins:
            yield f"::::{{tab}} {label[1]}"
            tab_is_open = True
        else:
            yield line
    if tab_is_open:
        yield "::::"


def tree(caption, pages):
    yield from ("", ":::{toctree}", ":hidden:")
    if caption:
        yield f":caption: {caption}"
    yield from ("", *pages, ":::", "")


def with_trees(lines, captions):
    """Ends every section that lists pages with the tree of them."""
    caption, pages = None, []
    for line, is_text in outside_of_fences(lines):
        section = SECTION.match(line) if is_text else None
        if section:
            if pages:
                yield from tree(caption, pages)
            caption, pages = section[1] if captions else None, []
        elif is_text and ENTRY.match(line):
            pages += [page for page in PAGE.findall(line) if page not in pages and not page.startswith("..")]
        yield line
    if pages:
        yield from tree(caption, pages)


def rewrite(app, name, source):
    if not app.env.doc2path(name).endswith(".md"):
        return
    lines = list(with_tabs(source[0].splitlines()))
    if name.split("/")[-1] == "index":
        lines = list(with_trees(lines, captions=name == app.config.root_doc))
    source[0] = "\n".join(lines) + "\n"


def setup(app):
    app.connect("source-read", rewrite)
    return {"parallel_read_safe": True, "parallel_write_safe": True}
