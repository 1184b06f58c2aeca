"""How Sphinx makes the manual: one folder of Markdown pages, shown from the disk, without a network."""

project = "Mirovane"
author = "the Mirovane developers"
html_title = "Mirovane"
highlight_language = "text"  # indented blocks are commands and what they print
language = "en"

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
