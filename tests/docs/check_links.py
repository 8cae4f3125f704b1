#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that no link leads nowhere: check_links.py (markdown ROOT FILE.md... | html DIRECTORY)

In Markdown every relative link leads to a file below ROOT, and its #anchor to a heading there. In the
built site every local href and src leads to a file, and its #anchor to an element there. Links
to other hosts are not followed.
"""

import collections
import functools
import html.parser
import pathlib
import re
import sys
import urllib.parse

FENCED_BLOCK = re.compile(r"^( *)```.*?^\1```$", re.MULTILINE | re.DOTALL)
CODE = re.compile(r"(`+).+?\1", re.DOTALL)
LINK = re.compile(r"\]\(\s*<?([^)\s>]+)|^\[[^]]+\]:\s*(\S+)|\b(?:href|src)=\"([^\"]+)\"", re.MULTILINE)
HEADING = re.compile(r"^#{1,6} +(.*?)(?: +#+)?$", re.MULTILINE)


def headings(text):
    """The anchors that a Markdown viewer makes of the headings."""
    anchors = collections.Counter()
    for heading in HEADING.findall(text):
        shown = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", heading)
        anchor = re.sub(r"[^\w\- ]", "", shown.lower()).replace(" ", "-")
        number = anchors[anchor]
        anchors[anchor] += 1
        yield f"{anchor}-{number}" if number else anchor


class Page(html.parser.HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.links = []
        self.anchors = set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src") and value:
                self.links.append(value)
            if name == "id" or (name == "name" and tag == "a"):
                self.anchors.add(value)


@functools.lru_cache(maxsize=None)
def links_and_anchors(file):
    text = file.read_text()
    if file.suffix == ".html":
        page = Page(text)
        return page.links, page.anchors
    prose = FENCED_BLOCK.sub("", text)
    links = ["".join(groups) for groups in LINK.findall(CODE.sub("", prose))]
    return links, set(headings(prose))


def leads_somewhere(link, file, root):
    # A query is for the browser's cache.
    path, anchor = (urllib.parse.unquote(part) for part in urllib.parse.urlsplit(link)[2::2])
    target = (file.parent / path).resolve() if path else file
    if not target.exists() or root not in (target, *target.parents):
        return False
    return not anchor or anchor in links_and_anchors(target)[1]


def check(root, files):
    problems = []
    number = 0
    for file in files:
        for link in links_and_anchors(file)[0]:
            if urllib.parse.urlsplit(link).scheme or link.startswith("//"):
                continue
            number += 1
            if not leads_somewhere(link, file, root):
                problems.append(f"{file.relative_to(root)}: {link} leads nowhere")
    print("\n".join(problems) or f"{number} links in {len(files)} files")
    return bool(problems) or number == 0


kind, top, *names = sys.argv[1:]
top = pathlib.Path(top).resolve()
documents = [top / name for name in names] if kind == "markdown" else sorted(top.rglob("*.html"))
sys.exit(check(top, documents))
