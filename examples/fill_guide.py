#!/usr/bin/env python3
"""Compare the code in a guide with the example it is taken from, or put it there.

    fill_guide.py [--write] GUIDE

A C block behind a line "<!-- FILE: NAME -->" is what stands in FILE, seen from the top of the
sources, between the comments "[NAME]" and "[/NAME]", without its common indentation. Exit status 1
when a block differs, or when there is none at all.
"""
import pathlib
import re
import sys
import textwrap

BLOCK = re.compile(r"(<!-- (\S+): (\w+) -->\n```c\n)(.*?)(```\n)", re.S)


def region(top, path, name):
    text = (top / path).read_text()
    found = re.search(rf"^[ ]*/\* \[{name}\] \*/\n(.*?)^[ ]*/\* \[/{name}\] \*/$", text, re.S | re.M)
    if not found:
        sys.exit(f"{path} has no region [{name}]")
    return textwrap.dedent(found.group(1))


def main():
    write = sys.argv[1:2] == ["--write"]
    guide = pathlib.Path(sys.argv[-1])
    top = pathlib.Path(__file__).resolve().parent.parent
    text = guide.read_text()
    filled = BLOCK.sub(lambda m: m[1] + region(top, m[2], m[3]) + m[5], text)
    blocks = BLOCK.findall(text)
    if write:
        guide.write_text(filled)
    elif filled != text:
        for opening, path, name, code, _ in blocks:
            if code != region(top, path, name):
                print(f"{guide}: the block differs from {path} [{name}]; fill_guide.py --write puts it right")
        return 1
    return 0 if blocks else 1


sys.exit(main())
