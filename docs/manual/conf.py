"""How Sphinx makes the manual: one folder of Markdown pages, shown from the disk, without a network."""

project = "Mirovane"
author = "the Mirovane developers"
html_title = "Mirovane"
highlight_language = "text"  # indented blocks are commands and what they print
language = "en"
smartquotes = False  # texts are as the program shows them

extensions = ["myst_parser"]
myst_heading_anchors = 3  # links like page.md#a-heading
suppress_warnings = ["epub.unknown_project_files"]
exclude_patterns = ["README.md"]

html_theme = "furo"
html_static_path = ["static"]
html_css_files = ["manual.css"]
html_logo = None
html_favicon = "../../packaging/mirovane.svg"
html_copy_source = False
html_show_sourcelink = False
html_show_copyright = False
html_show_sphinx = False
html_last_updated_fmt = None  # the same sources give the same pages
html_use_index = False
# The lines below each hit would be fetched, which browsers refuse for pages from the disk.
html_show_search_summary = False
pygments_style = "default"
pygments_dark_style = "native"


# The pages need none of these: neither does the theme, and the search has not for long.
unused_scripts = ("_static/jquery.js", "_static/underscore.js", "_static/_sphinx_javascript_frameworks_compat.js")


def leave_out_unused_scripts(app, page, template, context, doctree):
    context["script_files"] = [script for script in context["script_files"] if script not in unused_scripts]


def setup(app):
    app.connect("html-page-context", leave_out_unused_scripts, priority=900)
