"""Tables and scripts of a report page."""
# SPDX-License-Identifier: MIT
import html.parser


class Rows(html.parser.HTMLParser):
    """Tables of a page: for each series' section a list of tables, a table a list of rows of texts."""

    def __init__(self):
        super().__init__()
        self.sections, self.cell, self.scripts, self.script = [[]], None, {}, None

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if tag == "section":
            self.sections.append([])
        elif tag == "table":
            self.sections[-1].append((attributes.get("class", ""), []))
        elif tag == "tr":
            self.sections[-1][-1][1].append([])
        elif tag in ("td", "th"):
            self.cell = self.sections[-1][-1][1][-1]
            self.cell.append("")
        elif tag == "script":
            self.script = attributes.get("id")

    def handle_endtag(self, tag):
        if tag == "table":
            self.cell = None
        if tag == "script":
            self.script = None

    def handle_data(self, data):
        if self.script:
            self.scripts[self.script] = self.scripts.get(self.script, "") + data
        elif self.cell is not None:
            self.cell[-1] = (self.cell[-1] + data).strip()
