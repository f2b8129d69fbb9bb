#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: documents_test.py SOURCES PAGES
# The documents hold together: each link of README.md and docs/*.md leads to a file, and to a heading of it where it
# names one; each picture of the manual is shown somewhere. What the manual has in bold is on the screen: a menu path of
# the main window's table, or a text of the program. In the pages of PAGES, if they are built, links lead somewhere too.
import re
import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote

sources, pages = Path(sys.argv[1]), Path(sys.argv[2])
faults = []


def expect(holds, fault):
    if not holds:
        faults.append(fault)


def text_of(file):
    return re.sub(r"^```.*?^```", "", file.read_text(encoding="utf-8"), flags=re.M | re.S)


def anchors_of(file):
    """As the places that show Markdown name headings: letters in lower case, "-" for blanks, no other signs."""
    headings = re.findall(r"^#+ (.*)$", text_of(file), flags=re.M)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def check_link(file, link, anchors):
    if re.match(r"[a-z]+:", link):
        return
    path, _, anchor = unquote(link).partition("#")
    target = file.parent / path if path else file
    expect(target.is_file(), f"{file}: no file for the link {link}")
    if anchor and target.is_file():
        expect(anchor in anchors(target), f"{file}: no heading for the link {link}")


def words(text):
    return re.sub(r"\s+", " ", text.replace("&", "")).strip()


documents = [sources / "README.md", *sorted((sources / "docs").glob("*.md"))]
shown = set()
for document in documents:
    links = re.findall(r"\]\(([^)\s]+)\)", text_of(document))
    for link in links:
        check_link(document, link, anchors_of)
        shown.add((document.parent / link).resolve())
for picture in (sources / "docs/pictures").glob("*.png"):
    expect(picture.resolve() in shown, f"{picture}: no document shows it")

table = (sources / "src/ui/forms/main_window_menu.cpp").read_text(encoding="utf-8")
menu = [words(path).split(" > ") for path in re.findall(r'^    \{"([^"]+)", "\w+", &Form1', table, flags=re.M)]
literals = {
    words(literal)
    for folder in ("src/ui/forms", "src/app", "src/platform")
    for file in (sources / folder).rglob("*.cpp")
    for literal in re.findall(r'"((?:[^"\\\n]|\\.)*)"', file.read_text(encoding="utf-8"))
}
bold = {words(text) for text in re.findall(r"\*\*(.+?)\*\*", text_of(sources / "docs/manual.md"), flags=re.S)}
expect(min(len(shown), len(menu), len(bold)) > 30, "hardly any link, menu item or bold text was found")
for text in sorted(bold):
    path = text.split(" > ")
    is_menu = any(item[: len(path)] == path for item in menu)
    expect(is_menu if len(path) > 1 else is_menu or text in literals, f"manual.md: **{text}** is not on the screen")


class Page(HTMLParser):
    def __init__(self, file):
        super().__init__()
        self.links, self.anchors = [], set()
        self.feed(file.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        found = dict(attributes)
        self.links += [found[name] for name in ("href", "src") if name in found]
        self.anchors.add(found.get("id"))


for file in sorted(pages.glob("*.html")):
    for link in Page(file).links:
        check_link(file, link, lambda target: Page(target).anchors)

print("\n".join(faults), file=sys.stderr)
sys.exit(1 if faults else 0)
