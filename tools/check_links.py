#!/usr/bin/env python3
"""See that every link of the documentation to a file of the tree leads to one.

    check_links.py

Links to addresses outside and to headings are not looked at. Exit status 1 when one leads nowhere.
"""
import pathlib
import re
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
LINK = re.compile(r"\]\(([^)#\s]+)")


def main():
    pages = sorted(TOP.glob("*.md")) + sorted((TOP / "docs").rglob("*.md"))
    links = [(page, target) for page in pages for target in LINK.findall(page.read_text()) if "://" not in target]
    lost = [(page, target) for page, target in links if not (page.parent / target).exists()]
    for page, target in lost:
        print(f"{page.relative_to(TOP)}: {target} is not there")
    print(f"links: {len(links)} in {len(pages)} pages")
    return 1 if lost or not links else 0


sys.exit(main())
