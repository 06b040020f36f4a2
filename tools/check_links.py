#!/usr/bin/env python3
"""See that every link of the documentation to a file of the tree leads to one.

    check_links.py

Links to headings have to lead to one, too; addresses outside are not looked at. Exit status 1 when one leads nowhere.
"""
import pathlib
import re
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
LINK = re.compile(r"\]\(([^)\s]+)\)")
MADE = {"build", "out"}  # what is made here is not the tree's


def anchors(page):
    """What a page's headings are called in links: small letters, hyphens for spaces, without punctuation."""
    headings = re.findall(r"^#+ +(.+)$", re.sub(r"^```.*?^```", "", page.read_text(), flags=re.M | re.S), flags=re.M)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def leads_somewhere(page, target):
    name, _, heading = target.partition("#")
    goal = page.parent / name if name else page
    return goal.exists() and (not heading or goal.suffix != ".md" or heading in anchors(goal))


def main():
    pages = [page for page in sorted(TOP.rglob("*.md")) if page.relative_to(TOP).parts[0] not in MADE]
    links = [(page, target) for page in pages for target in LINK.findall(page.read_text()) if "://" not in target]
    lost = [(page, target) for page, target in links if not leads_somewhere(page, target)]
    for page, target in lost:
        print(f"{page.relative_to(TOP)}: {target} is not there")
    print(f"links: {len(links)} in {len(pages)} pages")
    return 1 if lost or not links else 0


sys.exit(main())
