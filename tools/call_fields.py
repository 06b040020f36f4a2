#!/usr/bin/env python3
"""call_fields.py [--check] - write the names of call fields from the seams' headers, or see that they are those.

A line of a call trace has its arguments without names, and the members of records with names of the trace's
own. apps/vboard/trace/call_table.inc has both for every call: the arguments as platform/include declares
them, the members as platform/virtual/media/call_text.cpp writes them.
"""

import os
import re
import sys

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
HEADERS = os.path.join(ROOT, "platform", "include")
TEXTS = os.path.join(ROOT, "platform", "virtual", "media", "call_text.cpp")
TABLE = os.path.join(ROOT, "apps", "vboard", "trace", "call_table.inc")
FUNCTION = re.compile(r"^(?:int32_t|int64_t|int|void)[ \n]+\*?((?:MI|board)_\w+)\(([^()]*)\);", re.M)
UNTRACED = {"board_time_us"}  # the wall clock is read all the time


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def members():
    """The members of every record, in the order of the trace."""
    text = read(TEXTS)
    found = {}
    for record, fields in re.findall(r"^RECORD\((\w+),(.*?)\)\n(?=RECORD|\n)", text, re.M | re.S):
        found[record] = re.findall(r'\{"(\w+)",', fields)
    for record, body in re.findall(r"^void describe\(std::string &text, const (MI_\w+) \*value, bool filled\)\n\{\n(.*?)^\}",
                                   text, re.M | re.S):
        fields = re.findall(r'\{"(\w+)",', body)
        if fields:
            found[record] = fields + (["crc32"] if "add_checksum" in body else [])
    return found


def calls():
    """(name, [(argument, record or None)]) of every call that a trace can have, sorted."""
    found = []
    for header in sorted(os.listdir(HEADERS)):
        if not re.fullmatch(r"mi_\w+\.h|board_io\.h", header):
            continue
        for name, inside in FUNCTION.findall(read(os.path.join(HEADERS, header))):
            if name in UNTRACED:
                continue
            arguments = []
            for argument in [] if inside.strip() == "void" else inside.split(","):
                kind, named = re.fullmatch(r"\s*(?:const )?([\w ]+?)[ *]+(\w+)", argument, re.S).groups()
                arguments.append((named, kind))
            found.append((name, arguments))
    return sorted(found)


def table():
    records = members()
    used = sorted({kind for _, arguments in calls() for _, kind in arguments if kind in records})
    unused = sorted(set(records) - set(used))
    if unused:
        sys.exit(f"call_fields.py: no call has a record {', '.join(unused)}")
    lines = ["// Written by tools/call_fields.py; how the trace writes calls: media/call_text.cpp."]
    for record in used:
        names = ", ".join(f'"{name}"' for name in records[record])
        lines.append(f"constexpr std::string_view k{record}[] = {{{names}}};")
    lines.append("")
    lines.append("constexpr CallFields kCalls[] = {")
    for name, arguments in calls():
        shown = ", ".join(f'{{"{argument}", {"k" + kind if kind in records else "{}"}}}' for argument, kind in arguments)
        lines.append(f'    {{"{name}", {len(arguments)}, {{{shown}}}}},' if arguments else f'    {{"{name}", 0, {{}}}},')
    lines.append("};")
    return "\n".join(lines) + "\n"


def main():
    check = sys.argv[1:] == ["--check"]
    if sys.argv[1:] and not check:
        print(__doc__.split("\n")[0], file=sys.stderr)
        return 2
    text = table()
    if not check:
        with open(TABLE, "w", encoding="utf-8") as file:
            file.write(text)
    elif not os.path.exists(TABLE) or read(TABLE) != text:
        print("apps/vboard/trace/call_table.inc is not what the headers say: run tools/call_fields.py")
        return 1
    return 0


sys.exit(main())
