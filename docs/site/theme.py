# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Mends what Debian 12's package of the theme has lost, and leaves out what no page uses.

Its style sheet asks a web server's /javascript for the browsers' common ground, which site.css lays instead, and
knows no readers whose system is dark. Its script is a module, which pages load as a script, and which a browser
loads from no file. Sphinx adds jQuery and Underscore for themes older than this one.
"""

import pathlib
import re

UNUSED = ("jquery.js", "underscore.js", "_sphinx_javascript_frameworks_compat.js")

IMPORT_OF_STYLES = re.compile(r"^@import url\(/javascript/.*\);\n", re.MULTILINE)
DARK = re.compile(r"^@media not print \{\n  body\[data-theme=\"dark\"\] \{\n.*?\} \}\n", re.MULTILINE | re.DOTALL)
IMPORT_OF_SCRIPT = 'import Gumshoe from "./gumshoe-patched.js";\n'


def dark_where_the_system_is(styles):
    block = DARK.search(styles)[0].replace('[data-theme="dark"]', ':not([data-theme="light"])')
    return block.replace("@media not print", "@media screen and (prefers-color-scheme: dark)", 1)


def without_unused(app, name, template, context, doctree):
    if "script_files" in context:
        context["script_files"] = [file for file in context["script_files"] if not str(file).endswith(UNUSED)]


def mend(app, exception):
    if exception or app.builder.format != "html":
        return
    static = pathlib.Path(app.outdir) / "_static"
    for file in UNUSED:
        (static / file).unlink()
    sheet = static / "styles/furo.css"
    styles = sheet.read_text()
    if IMPORT_OF_STYLES.search(styles):
        styles = IMPORT_OF_STYLES.sub("", styles)
        sheet.write_text(styles + dark_where_the_system_is(styles))
    script = static / "scripts/furo.js"
    if IMPORT_OF_SCRIPT in script.read_text():
        imported = static / "scripts/gumshoe-patched.js"
        script.write_text(imported.read_text() + script.read_text().replace(IMPORT_OF_SCRIPT, ""))
        imported.unlink()


def setup(app):
    app.connect("html-page-context", without_unused)
    app.connect("build-finished", mend)
    return {"parallel_read_safe": True, "parallel_write_safe": True}
